#include "names/ErMapperNames.h"

#include "names/ErMapperText.h"

#include <Tellurion/Numbers.h>

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
    while (!row.empty()) {
        std::string_view parameter = Cut(row, ' ');
        const std::string_view key = Cut(parameter, '=');
        // A Mercator row states the parallel whose scale its factor is; northings count
        // from the equator all the same.
        const bool told_twice = projection.method == "Mercator_1SP" && key == "latitude_of_origin";
        projection.parameters.emplace_back(key, told_twice ? 0.0 : ParseDouble(parameter));
    }
    return projection;
}

}  // namespace

const ErMapperNames& ErMapperNames::Instance() {
    static const auto* const instance = new ErMapperNames(kErMapperText);
    return *instance;
}

ErMapperNames::ErMapperNames(std::string_view table) {
    while (!table.empty())
        AddRow(Cut(table, '\n'));
    Index();
}

void ErMapperNames::AddRow(std::string_view row) {
    const std::string_view kind = Cut(row, '\t');
    if (kind == "datum") datums_.push_back(ParseDatum(row));
    if (kind == "projection") projections_.push_back(ParseProjection(row));
}

void ErMapperNames::Index() {
    for (std::size_t i = 0; i < datums_.size(); ++i) {
        datum_by_name_.emplace(datums_[i].name, i);
        if (datums_[i].epsg != 0) datum_by_epsg_.emplace(datums_[i].epsg, i);
    }
    for (std::size_t i = 0; i < projections_.size(); ++i)
        projection_by_name_.emplace(projections_[i].name, i);
}

const ErMapperDatum* ErMapperNames::FindDatum(std::string_view name) const {
    const auto found = datum_by_name_.find(name);
    return found == datum_by_name_.end() ? nullptr : &datums_[found->second];
}

const ErMapperProjection* ErMapperNames::FindProjection(std::string_view name) const {
    const auto found = projection_by_name_.find(name);
    return found == projection_by_name_.end() ? nullptr : &projections_[found->second];
}

const ErMapperDatum* ErMapperNames::FindDatumByEpsg(int geodetic) const {
    const auto found = datum_by_epsg_.find(geodetic);
    return found == datum_by_epsg_.end() ? nullptr : &datums_[found->second];
}

}  // namespace GeoCalc::DB
