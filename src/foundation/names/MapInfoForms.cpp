#include "names/MapInfoForms.h"

#include "names/MapInfoConversions.h"

#include <iterator>
#include <utility>

namespace Tellurion {
namespace MapInfo {
namespace {

constexpr Implied kNoEasting{kEasting, 0.0};
constexpr Implied kNoNorthing{kNorthing, 0.0};
constexpr Form kForms[] = {
    {2, 9835, "Lambert Cylindrical Equal Area", {kLongitude, kParallel1}, {kNoEasting, kNoNorthing}},
    {3,
     kLambert2,
     "Lambert Conic Conformal (2SP)",
     {kFalseLongitude, kFalseLatitude, kParallel1, kParallel2, kFalseEasting, kFalseNorthing},
     {}},
    {29, 9820, "Lambert Azimuthal Equal Area", {kLongitude, kLatitude}, {kNoEasting, kNoNorthing}},
    {4, 9820, "Lambert Azimuthal Equal Area", {kLongitude, kLatitude}, {kNoEasting, kNoNorthing}},
    {28, 9832, "Modified Azimuthal Equidistant", {kLongitude, kLatitude}, {kNoEasting, kNoNorthing}},
    {5, 9832, "Modified Azimuthal Equidistant", {kLongitude, kLatitude}, {kNoEasting, kNoNorthing}},
    {6, 0, "Equidistant Conic", {kLongitude, kLatitude, kParallel1, kParallel2, kEasting, kNorthing}, {}},
    {7,
     9812,
     "Hotine Oblique Mercator (variant A)",
     {kCentreLongitude, kCentreLatitude, kAzimuth, kLineScale, kEasting, kNorthing},
     {}},
    {8, 9807, "Transverse Mercator", {kLongitude, kLatitude, kScale, kEasting, kNorthing}, {}},
    {9,
     9822,
     "Albers Equal Area",
     {kFalseLongitude, kFalseLatitude, kParallel1, kParallel2, kFalseEasting, kFalseNorthing},
     {}},
    {10,
     kMercatorA,
     "Mercator (variant A)",
     {kLongitude},
     {{{kLatitude, 0.0}, {kScale, 1.0}, kNoEasting, kNoNorthing}}},
    {11, 0, "Miller Cylindrical", {kLongitude}, {kNoEasting, kNoNorthing}},
    {12, 0, "Robinson", {kLongitude}, {kNoEasting, kNoNorthing}},
    {13, 0, "Mollweide", {kLongitude}, {kNoEasting, kNoNorthing}},
    {14, 0, "Eckert IV", {kLongitude}, {kNoEasting, kNoNorthing}},
    {15, 0, "Eckert VI", {kLongitude}, {kNoEasting, kNoNorthing}},
    {16, 0, "Sinusoidal", {kLongitude}, {kNoEasting, kNoNorthing}},
    {17, 0, "Gall Stereographic", {kLongitude}, {kNoEasting, kNoNorthing}},
    {18, 9811, "New Zealand Map Grid", {kLongitude, kLatitude, kEasting, kNorthing}, {}},
    {19,
     9803,
     "Lambert Conic Conformal (2SP Belgium)",
     {kFalseLongitude, kFalseLatitude, kParallel1, kParallel2, kFalseEasting, kFalseNorthing},
     {}},
    {20, 0, "Stereographic", {kLongitude, kLatitude, kScale, kEasting, kNorthing}, {}},
    {21, 9807, "Transverse Mercator", {kLongitude, kLatitude, kScale, kEasting, kNorthing}, {}},
    {22, 9807, "Transverse Mercator", {kLongitude, kLatitude, kScale, kEasting, kNorthing}, {}},
    {23, 9807, "Transverse Mercator", {kLongitude, kLatitude, kScale, kEasting, kNorthing}, {}},
    {24, 9807, "Transverse Mercator", {kLongitude, kLatitude, kScale, kEasting, kNorthing}, {}},
    {25,
     9815,
     "Hotine Oblique Mercator (variant B)",
     {kCentreLongitude, kCentreLatitude, kCentreEasting, kCentreNorthing},
     {{{kAzimuth, 90.0}, {kSkewAngle, 90.0}, {kLineScale, 1.0}}}},
    {26, 9805, "Mercator (variant B)", {kLongitude, kParallel1}, {kNoEasting, kNoNorthing}},
    {27, 9818, "American Polyconic", {kLongitude, kLatitude, kEasting, kNorthing}, {}},
    {30, 9806, "Cassini-Soldner", {kLongitude, kLatitude, kEasting, kNorthing}, {}},
    {31, 9809, "Oblique Stereographic", {kLongitude, kLatitude, kScale, kEasting, kNorthing}, {}},
    {32,
     1041,
     "Krovak (North Orientated)",
     {kOriginLongitude, kCentreLatitude, kPseudoParallel, kConeAxis, kEasting, kNorthing},
     {{{kPseudoScale, 1.0}}}},
    {33,
     1028,
     "Equidistant Cylindrical",
     {kLongitude, kLatitude},
     {{{kParallel1, 0.0}, kNoEasting, kNoNorthing}}},
    {34, 9807, "Transverse Mercator", {kLongitude, kLatitude, kScale, kEasting, kNorthing}, {}},
};

}  // namespace

std::span<const Form> Forms() {
    return kForms;
}

}  // namespace MapInfo

namespace {

using namespace MapInfo;

// In EPSG's order of the parameters of a method.
constexpr std::pair<int, const char*> kNames[] = {
    {kCentreLatitude, "Latitude of projection centre"},
    {kCentreLongitude, "Longitude of projection centre"},
    {kTrueParallel, "Latitude of standard parallel"},
    {kOriginLongitude, "Longitude of origin"},
    {kConeAxis, "Co-latitude of cone axis"},
    {kPseudoParallel, "Latitude of pseudo standard parallel"},
    {kPseudoScale, "Scale factor on pseudo standard parallel"},
    {kAzimuth, "Azimuth of initial line"},
    {kSkewAngle, "Angle from Rectified to Skew Grid"},
    {kLineScale, "Scale factor on initial line"},
    {kFalseLatitude, "Latitude of false origin"},
    {kFalseLongitude, "Longitude of false origin"},
    {kLatitude, "Latitude of natural origin"},
    {kParallel1, "Latitude of 1st standard parallel"},
    {kParallel2, "Latitude of 2nd standard parallel"},
    {kLongitude, "Longitude of natural origin"},
    {kScale, "Scale factor at natural origin"},
    {kEasting, "False easting"},
    {kNorthing, "False northing"},
    {kCentreEasting, "Easting at projection centre"},
    {kCentreNorthing, "Northing at projection centre"},
    {kFalseEasting, "Easting at false origin"},
    {kFalseNorthing, "Northing at false origin"},
    {kEllipsoidScale, "Ellipsoid scaling factor"},
};

const std::pair<int, const char*>* FindName(int epsg) {
    return std::ranges::find(kNames, epsg, [](const auto& entry) { return entry.first; });
}

}  // namespace

bool ParameterOrder::operator()(int first, int second) const {
    return std::pair(FindName(first), first) < std::pair(FindName(second), second);
}

const char* NameOfParameter(int epsg) {
    const auto* found = FindName(epsg);
    return found == std::end(kNames) ? nullptr : found->second;
}

bool IsLengthParameter(int epsg) {
    return epsg == kEasting || epsg == kNorthing || epsg == kCentreEasting || epsg == kCentreNorthing ||
           epsg == kFalseEasting || epsg == kFalseNorthing;
}

bool IsScaleParameter(int epsg) {
    return epsg == kScale || epsg == kLineScale || epsg == kPseudoScale || epsg == kEllipsoidScale;
}

}  // namespace Tellurion
