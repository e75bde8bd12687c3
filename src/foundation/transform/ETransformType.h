#pragma once

namespace Tellurion {

/// What a BTransform is made of.
enum class ETransformType : int {
    Unknown = 0,
    Math = 1,  ///< a BMathTransform
};

}  // namespace Tellurion
