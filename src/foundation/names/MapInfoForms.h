#pragma once

#include <algorithm>
#include <array>
#include <span>

/// The projection types of clauses, and the numbers of EPSG that they are described by.
namespace Tellurion::MapInfo {

// Parameters by their EPSG numbers.
inline constexpr int kLatitude = 8801;
inline constexpr int kLongitude = 8802;
inline constexpr int kScale = 8805;
inline constexpr int kEasting = 8806;
inline constexpr int kNorthing = 8807;
inline constexpr int kCentreLatitude = 8811;
inline constexpr int kCentreLongitude = 8812;
inline constexpr int kAzimuth = 8813;
inline constexpr int kSkewAngle = 8814;
inline constexpr int kLineScale = 8815;
inline constexpr int kCentreEasting = 8816;
inline constexpr int kCentreNorthing = 8817;
inline constexpr int kPseudoParallel = 8818;
inline constexpr int kPseudoScale = 8819;
inline constexpr int kFalseLatitude = 8821;
inline constexpr int kFalseLongitude = 8822;
inline constexpr int kParallel1 = 8823;
inline constexpr int kParallel2 = 8824;
inline constexpr int kFalseEasting = 8826;
inline constexpr int kFalseNorthing = 8827;
inline constexpr int kTrueParallel = 8832;
inline constexpr int kOriginLongitude = 8833;
inline constexpr int kConeAxis = 1036;
inline constexpr int kEllipsoidScale = 1038;

// Methods by their EPSG numbers.
inline constexpr int kTransverseMercator = 9807;
inline constexpr int kTransverseMercatorSouth = 9808;
inline constexpr int kLambert1 = 9801;
inline constexpr int kLambert2 = 9802;
inline constexpr int kLambertMichigan = 1051;
inline constexpr int kMercatorA = 9804;
inline constexpr int kPolarA = 9810;
inline constexpr int kPolarB = 9829;
inline constexpr int kPolarC = 9830;

/// A parameter that the clause leaves out.
struct Implied {
    int parameter = 0;
    double value = 0.0;
};

/// One projection type. Of several types for one method the first is written.
struct Form {
    int type;
    int method_epsg;
    const char* method;
    std::array<int, 6> parameters;  ///< in the order of the clause
    std::array<Implied, 4> implied;
};

std::span<const Form> Forms();

/// The first type for which `holds` is true; null without one.
template <class Holds>
const Form* FindForm(Holds holds) {
    const std::span<const Form> forms = Forms();
    const auto found = std::ranges::find_if(forms, holds);
    return found == forms.end() ? nullptr : &*found;
}

}  // namespace Tellurion::MapInfo
