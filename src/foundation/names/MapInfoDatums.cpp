#include "names/MapInfoDatums.h"

#include "names/MapInfoDatumsText.h"

#include <Tellurion/Numbers.h>

#include <algorithm>
#include <cmath>
#include <unordered_map>

namespace Tellurion {
namespace {

constexpr MapInfoEllipsoid kEllipsoids[] = {
    {0, "GRS 80", 6378137.0, 298.257222101},
    {1, "WGS 72", 6378135.0, 298.26},
    {2, "Australian", 6378160.0, 298.25},
    {3, "Krassovsky", 6378245.0, 298.3},
    {4, "International 1924", 6378388.0, 297.0},
    {5, "Hayford", 6378388.0, 297.0},
    {6, "Clarke 1880", 6378249.145, 293.465},
    {7, "Clarke 1866", 6378206.4, 294.9786982},
    {8, "Clarke 1866 (modified for Michigan)", 6378450.047484481, 294.9786982},
    {9, "Airy 1830", 6377563.396, 299.3249646},
    {10, "Bessel 1841", 6377397.155, 299.1528128},
    {11, "Everest (India 1830)", 6377276.345, 300.8017},
    {12, "Sphere", 6370997.0, 0.0},
    {13, "Airy 1830 (modified for Ireland 1965)", 6377340.189, 299.3249646},
    {14, "Bessel 1841 (modified for Schwarzeck)", 6377483.865, 299.1528128},
    {15, "Clarke 1880 (modified for Arc 1950)", 6378249.145326, 293.4663076},
    {16, "Clarke 1880 (modified for Merchich)", 6378249.2, 293.46598},
    {17, "Everest (W. Malaysia and Singapore 1948)", 6377304.063, 300.8017},
    {18, "Fischer 1960", 6378166.0, 298.3},
    {19, "Fischer 1960 (modified for South Asia)", 6378155.0, 298.3},
    {20, "Fischer 1968", 6378150.0, 298.3},
    {21, "GRS 67", 6378160.0, 298.247167427},
    {22, "Helmert 1906", 6378200.0, 298.3},
    {23, "Hough", 6378270.0, 297.0},
    {24, "South American", 6378160.0, 298.25},
    {25, "War Office", 6378300.583, 296.0},
    {26, "WGS 60", 6378165.0, 298.3},
    {27, "WGS 66", 6378145.0, 298.25},
    {28, "WGS 84", 6378137.0, 298.257223563},
    {30, "Clarke 1880 (modified for IGN)", 6378249.2, 293.4660213},
    {31, "IAG 75", 6378140.0, 298.257222},
    {32, "MERIT 83", 6378137.0, 298.257},
    {33, "New International 1967", 6378157.5, 298.25},
    {34, "Walbeck", 6376896.0, 302.78},
    {35, "Bessel 1841 (modified for NGO 1948)", 6377492.0176, 299.15281},
    {36, "Clarke 1858", 6378293.639, 294.26068},
    {37, "Clarke 1880 (modified for Jamaica)", 6378249.136, 293.46631},
    {38, "Clarke 1880 (modified for Palestine)", 6378300.79, 293.46623},
    {39, "Everest (Brunei and East Malaysia)", 6377298.556, 300.8017},
    {40, "Everest (India 1956)", 6377301.243, 300.80174},
    {41, "Indonesian", 6378160.0, 298.247},
    {42, "NWL 9D", 6378145.0, 298.25},
    {43, "NWL 10D", 6378135.0, 298.26},
    {44, "OSU86F", 6378136.2, 298.25722},
    {45, "OSU91A", 6378136.3, 298.25722},
    {46, "Plessis 1817", 6376523.0, 308.64},
    {47, "Struve 1860", 6378297.0, 294.73},
    {48, "Everest (West Malaysia 1969)", 6377304.063, 300.8017},
    {49, "Irish (WOFO)", 6377542.178, 299.325},
    {50, "Everest (Pakistan)", 6377309.613, 300.8017},
    {51, "ATS77 (Average Terrestrial System 1977)", 6378135.0, 298.257},
    {52, "PZ90", 6378136.0, 298.257839303},
    {53, "Xian 1980", 6378140.0, 298.257},
    {56, "GSK2011", 6378136.5, 298.2564151},
    {57, "PZ90.11", 6378136.0, 298.25784},
    {29, "WGS 84 (datum 0)", 6378137.01, 298.257223563},
    {54, "WGS 84 (datum 157)", 6378137.01, 298.257223563},
};

/// Numbers that repeat the ellipsoid of another number are read and not written.
constexpr int kRepeated[] = {5, 24, 29, 42, 43, 48, 54};

/// Clauses come back with the digits that were written.
constexpr MapInfoShift kSameShift = {1e-6, 1e-6, 1e-6, 5e-7, 5e-7, 5e-7, 2e-7};
constexpr double kSameMeridian = 1e-7;

std::string_view Cut(std::string_view& text, char separator) {
    const std::size_t end = text.find(separator);
    const std::string_view part = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    return part;
}

/// Number, EPSG system, '=' for the preferred one, ellipsoid, prime meridian, and the
/// shift or the title.
MapInfoDatum ParseRow(std::string_view row) {
    MapInfoDatum datum;
    datum.number = static_cast<int>(ParseLong(Cut(row, '\t')));
    datum.epsg = static_cast<int>(ParseLong(Cut(row, '\t')));
    datum.preferred = Cut(row, '\t') == "=";
    datum.ellipsoid = static_cast<int>(ParseLong(Cut(row, '\t')));
    datum.prime_meridian = ParseDouble(Cut(row, '\t'));
    datum.title = row;
    if (!datum.IsSpelledOut()) return datum;
    for (double& value : datum.shift)
        value = ParseDouble(Cut(row, ','));
    return datum;
}

bool IsSame(const MapInfoDatum& a, const MapInfoDatum& b) {
    if (a.ellipsoid != b.ellipsoid || std::abs(a.prime_meridian - b.prime_meridian) > kSameMeridian)
        return false;
    for (std::size_t i = 0; i < a.shift.size(); ++i)
        if (!(std::abs(a.shift[i] - b.shift[i]) <= kSameShift[i])) return false;
    return true;
}

class Table {
public:
    static const Table& Instance() {
        static const auto* const instance = new Table;
        return *instance;
    }

    const MapInfoDatum* FindNumber(int number) const { return Find(by_number_, number); }
    const MapInfoDatum* FindEpsg(int epsg) const { return Find(by_epsg_, epsg); }
    const MapInfoDatum* FindShift(const MapInfoDatum& wanted) const {
        const auto found = std::ranges::find_if(
            rows_, [&](const MapInfoDatum& row) { return row.IsSpelledOut() && IsSame(row, wanted); });
        return found == rows_.end() ? nullptr : &*found;
    }

private:
    Table() {
        for (std::string_view text(kMapInfoDatumsText); !text.empty();)
            if (const std::string_view row = Cut(text, '\n'); !row.empty() && row.front() != '#')
                rows_.push_back(ParseRow(row));
        for (std::size_t i = 0; i < rows_.size(); ++i) {
            if (!rows_[i].IsSpelledOut()) by_number_.emplace(rows_[i].number, i);
            if (rows_[i].preferred) by_epsg_.emplace(rows_[i].epsg, i);
        }
    }
    const MapInfoDatum* Find(const std::unordered_map<int, std::size_t>& index, int key) const {
        const auto found = index.find(key);
        return found == index.end() ? nullptr : &rows_[found->second];
    }

    std::vector<MapInfoDatum> rows_;
    std::unordered_map<int, std::size_t> by_number_;
    std::unordered_map<int, std::size_t> by_epsg_;
};

}  // namespace

const MapInfoEllipsoid* FindMapInfoEllipsoid(int number) {
    const auto* found = std::ranges::find(kEllipsoids, number, &MapInfoEllipsoid::number);
    return found == std::end(kEllipsoids) ? nullptr : found;
}

const MapInfoEllipsoid* FindMapInfoEllipsoid(double semi_major, double inverse_flattening) {
    // Less than a millimetre at the pole.
    constexpr double kSameAxis = 1e-3;
    constexpr double kSameFlattening = 1.6e-5;
    const MapInfoEllipsoid* best = nullptr;
    double best_difference = 0.0;
    for (const MapInfoEllipsoid& entry : kEllipsoids) {
        const double axis = std::abs(entry.semi_major - semi_major);
        const double flattening = std::abs(entry.inverse_flattening - inverse_flattening);
        if (axis > kSameAxis || flattening > kSameFlattening ||
            std::ranges::find(kRepeated, entry.number) != std::end(kRepeated))
            continue;
        if (best && axis + flattening >= best_difference) continue;
        best = &entry;
        best_difference = axis + flattening;
    }
    return best;
}

std::vector<double> MapInfoDatum::Parameters() const {
    if (!IsSpelledOut()) return {};
    std::vector<double> parameters{static_cast<double>(ellipsoid)};
    parameters.insert(parameters.end(), shift.begin(), shift.begin() + (number == kMapInfoShift ? 3 : 7));
    if (number == kMapInfoShiftAndRotation) parameters.push_back(prime_meridian);
    return parameters;
}

MapInfoDatum ReadMapInfoDatum(int number, const std::vector<double>& parameters) {
    MapInfoDatum datum;
    datum.number = number;
    datum.ellipsoid = -1;
    if (!datum.IsSpelledOut()) {
        const MapInfoDatum* known = Table::Instance().FindNumber(number);
        return known ? *known : datum;
    }
    if (parameters.size() != static_cast<std::size_t>(datum.CountParameters())) return datum;
    const double ellipsoid = parameters.front();
    if (!(ellipsoid >= 0.0 && ellipsoid < 1000.0) || std::trunc(ellipsoid) != ellipsoid ||
        !FindMapInfoEllipsoid(static_cast<int>(ellipsoid)))
        return datum;
    datum.ellipsoid = static_cast<int>(ellipsoid);
    const std::size_t shifts = number == kMapInfoShift ? 3 : 7;
    std::copy_n(parameters.begin() + 1, shifts, datum.shift.begin());
    if (number == kMapInfoShiftAndRotation) datum.prime_meridian = parameters.back();
    if (const MapInfoDatum* known = Table::Instance().FindShift(datum)) datum.epsg = known->epsg;
    return datum;
}

const MapInfoDatum* FindMapInfoDatum(int epsg) {
    return epsg != 0 ? Table::Instance().FindEpsg(epsg) : nullptr;
}

MapInfoDatum MakeMapInfoDatum(int ellipsoid, double prime_meridian, const MapInfoShift& shift) {
    const bool rotated =
        std::any_of(shift.begin() + 3, shift.end(), [](double value) { return value != 0.0; });
    MapInfoDatum datum;
    datum.number = rotated || prime_meridian != 0.0 ? kMapInfoShiftAndRotation : kMapInfoShift;
    datum.ellipsoid = ellipsoid;
    datum.prime_meridian = prime_meridian;
    datum.shift = shift;
    return datum;
}

}  // namespace Tellurion
