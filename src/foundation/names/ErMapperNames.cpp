#include "names/ErMapperNames.h"

#include "names/ErMapperText.h"

#include <Tellurion/Numbers.h>

#include <algorithm>

namespace GeoCalc::DB {
namespace {

using Tellurion::ParseDouble;

/// Cuts the part before `separator`, or the rest, off the front.
std::string_view Cut(std::string_view& text, char separator) {
    const std::size_t end = text.find(separator);
    const std::string_view part = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    return part;
}

/// A number, or two parted by a stroke.
double ParseQuotient(std::string_view text) {
    if (text == "1") return 1.0;  // most are
    const double numerator = ParseDouble(Cut(text, '/'));
    return text.empty() ? numerator : numerator / ParseDouble(text);
}

ErMapperDatum ParseDatum(std::string_view row) {
    ErMapperDatum datum;
    datum.name = Cut(row, '\t');
    datum.title = Cut(row, '\t');
    datum.ellipsoid = Cut(row, '\t');
    datum.semi_major_axis = ParseDouble(Cut(row, '\t'));
    datum.inverse_flattening = ParseDouble(Cut(row, '\t'));
    datum.epsg = static_cast<int>(Tellurion::ParseLong(Cut(row, '\t')));
    while (!row.empty())
        datum.to_wgs84.push_back(ParseDouble(Cut(row, ',')));
    return datum;
}

ErMapperProjection ParseProjection(std::string_view row) {
    ErMapperProjection projection;
    projection.name = Cut(row, '\t');
    projection.method = Cut(row, '\t');
    projection.metres_per_unit = ParseQuotient(Cut(row, '\t'));
    projection.parameters = row;
    return projection;
}

template <class Row>
std::vector<Row> ReadRows(std::string_view kind, Row (*parse)(std::string_view)) {
    std::vector<Row> rows;
    std::string_view table(kErMapperText);
    while (!table.empty()) {
        std::string_view row = Cut(table, '\n');
        if (Cut(row, '\t') == kind) rows.push_back(parse(row));
    }
    return rows;
}

/// The table is sorted by name.
template <class Row>
const Row* FindName(const std::vector<Row>& rows, std::string_view name) {
    const auto found = std::ranges::lower_bound(rows, name, {}, &Row::name);
    return found != rows.end() && found->name == name ? &*found : nullptr;
}

}  // namespace

std::vector<std::pair<std::string_view, double>> ErMapperProjection::Parameters() const {
    std::vector<std::pair<std::string_view, double>> read;
    std::string_view text = parameters;
    while (!text.empty()) {
        std::string_view value = Cut(text, ' ');
        const std::string_view key = Cut(value, '=');
        // A Mercator row states the parallel whose scale its factor is; northings count
        // from the equator all the same.
        const bool told_twice = method == "Mercator_1SP" && key == "latitude_of_origin";
        read.emplace_back(key, told_twice ? 0.0 : ParseDouble(value));
    }
    return read;
}

double ErMapperProjection::CentralMeridian() const {
    std::string_view text = parameters;
    while (!text.empty()) {
        std::string_view value = Cut(text, ' ');
        const std::string_view key = Cut(value, '=');
        if (key == "central_meridian" || key == "longitude_of_center") return ParseDouble(value);
    }
    return 0.0;
}

const ErMapperNames& ErMapperNames::Instance() {
    static const auto* const instance = new ErMapperNames;
    return *instance;
}

ErMapperNames::ErMapperNames() : datums_(ReadRows("datum", ParseDatum)) {
    for (const ErMapperDatum& datum : datums_)
        if (datum.epsg != 0) datum_by_epsg_.emplace(datum.epsg, &datum);
}

const std::vector<ErMapperProjection>& ErMapperNames::Projections() const {
    static const auto* const projections =
        new std::vector<ErMapperProjection>(ReadRows("projection", ParseProjection));
    return *projections;
}

const ErMapperDatum* ErMapperNames::FindDatum(std::string_view name) const {
    return FindName(datums_, name);
}

const ErMapperProjection* ErMapperNames::FindProjection(std::string_view name) const {
    return FindName(Projections(), name);
}

const ErMapperDatum* ErMapperNames::FindDatumByEpsg(int geodetic) const {
    const auto found = datum_by_epsg_.find(geodetic);
    return found == datum_by_epsg_.end() ? nullptr : found->second;
}

}  // namespace GeoCalc::DB
