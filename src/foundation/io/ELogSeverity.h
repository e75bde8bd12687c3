#pragma once

namespace Tellurion {

/// The library itself logs at Error only: failures, and failures that it goes on after.
enum class ELogSeverity : int {
    Debug = 0,
    Information = 1,
    Warning = 2,
    Error = 3,
};

}  // namespace Tellurion
