#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace VellumLib {

/// The keys of an LGIDict "Projection" dictionary by number.
enum LGIParameter : int {
    kProjectionType = 0,
    kType = 1,
    kUnits = 2,
    kDatum = 3,
    kCentralMeridian = 4,
    kFalseEasting = 5,
    kFalseNorthing = 6,
    kHeight = 7,
    kHemisphere = 8,
    kLatitudeOne = 9,
    kLatitudeTwo = 10,
    kLatitudeOfTrueScale = 11,
    kLongitudeOne = 12,
    kLongitudeTwo = 13,
    kLongitudeDownFromPole = 14,
    kOrientation = 15,
    kOriginHeight = 16,
    kOriginLatitude = 17,
    kOriginLongitude = 18,
    kScaleFactor = 19,
    kStandardParallel = 20,
    kStandardParallelOne = 21,
    kStandardParallelTwo = 22,
    kZone = 23,
    kLGIParameterCount
};

/// A projection of the LGIDict dialect.
struct CLGIProjection {
    std::string Name;  ///< for people; not used
    std::int32_t Id = kUnknownId;
    std::vector<int> ParameterList;  ///< what the dialect says it takes; kept, not consulted

    static constexpr std::int32_t kNoProjection = -1;
    static constexpr std::int32_t kUTM = 76;
    static constexpr std::int32_t kStatePlane = 84;
    static constexpr std::int32_t kUnknownId = 0;  ///< of a code that the table lacks
};

/// By the text of "ProjectionType", exact and case-sensitive.
using LGIProjectionMap = std::map<std::string, CLGIProjection, std::less<>>;

const LGIProjectionMap& LGIProjections();

/// The keys of the dictionary by number.
const std::map<int, std::string>& LGIParameterKeys();

}  // namespace VellumLib
