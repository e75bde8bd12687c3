#pragma once

#include <Tellurion/Export.h>

#include <cstddef>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace GeoCalc::DB {

/// A datum by its ER Mapper name.
struct ErMapperDatum {
    std::string_view name;
    std::string_view title;
    std::string_view ellipsoid;
    double semi_major_axis = 0.0;     ///< in metres, or feet where above seven million
    double inverse_flattening = 0.0;  ///< 0 for a sphere
    int epsg = 0;                     ///< of the geodetic system; 0 where that is open
    std::vector<double> to_wgs84;     ///< none, or seven parameters of a shift
};

/// A projection by its ER Mapper name; it has no datum of its own.
struct ErMapperProjection {
    std::string_view name;
    std::string_view method;  ///< as well-known text 1 names it
    double metres_per_unit = 0.0;
    std::string_view parameters;  ///< as the table has them; few of a thousand are ever read

    /// Angles in degrees, false origins in the unit.
    std::vector<std::pair<std::string_view, double>> Parameters() const;
    /// In degrees; 0 without one.
    double CentralMeridian() const;
};

/// The names that headers of the ER Mapper family give to datums and projections.
/// Read once, on first need, and never changed; the projections, which are nine tenths, when the first
/// of them is asked for. Names are compared exactly.
class TELLURION_EXPORT ErMapperNames {
public:
    static const ErMapperNames& Instance();

    /// Null for an unknown name.
    const ErMapperDatum* FindDatum(std::string_view name) const;
    const ErMapperProjection* FindProjection(std::string_view name) const;
    /// The datum of an EPSG geodetic system; of several names the first by alphabet.
    /// Null without one.
    const ErMapperDatum* FindDatumByEpsg(int geodetic) const;

    const std::vector<ErMapperDatum>& Datums() const { return datums_; }
    const std::vector<ErMapperProjection>& Projections() const;

private:
    ErMapperNames();

    std::vector<ErMapperDatum> datums_;
    std::unordered_map<int, const ErMapperDatum*> datum_by_epsg_;
};

}  // namespace GeoCalc::DB
