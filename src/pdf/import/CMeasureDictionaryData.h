#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace VellumLib {

/// One georeferenced area of a page, whichever dialect it comes from. A plain value:
/// nothing in it was checked when it was filled.
class CMeasureDictionaryData {
public:
    using Pair = std::pair<double, double>;

    /// The coordinate system as the file names it.
    struct CoordSysPart {
        std::int32_t EPSG = kNoEPSG;
        std::string GCSType;  ///< kept, not used
        std::string WKT;
    };
    static constexpr std::int32_t kNoEPSG = -1;

    CMeasureDictionaryData() = default;
    CMeasureDictionaryData(const CMeasureDictionaryData&) = default;
    CMeasureDictionaryData(CMeasureDictionaryData&&) = default;
    CMeasureDictionaryData& operator=(const CMeasureDictionaryData&) = default;
    CMeasureDictionaryData& operator=(CMeasureDictionaryData&&) = default;
    virtual ~CMeasureDictionaryData() = default;

    std::vector<double> BBox;  ///< left, bottom, right, top in page points
    std::vector<Pair> Bounds;  ///< outline of the map area; kept, not used for the reference
    CoordSysPart CoordSys;
    std::vector<Pair> GPTS;   ///< world position of each control point, see GPTSInCoordSys
    std::vector<Pair> LPTS;   ///< its place in BBox: fraction from the left, fraction from the bottom
    std::vector<double> CTM;  ///< a, b, c, d, e, f of page points to world; empty when the file has none
    /// False: GPTS are latitude, longitude in degrees. True: world y, world x.
    bool GPTSInCoordSys = false;
    std::string ViewportName;  ///< travels with the record; nothing fills it
};

}  // namespace VellumLib
