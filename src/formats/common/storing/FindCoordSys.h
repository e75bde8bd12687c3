#pragma once

#include "common/policy/Strictness.h"

#include <Tellurion/BCoordSys.h>
#include <Tellurion/BSharedPtr.h>
#include <Tellurion/BString.h>

#include <functional>

namespace MapAnchor {

/// The texts of a format whose coordinate system cannot be found.
struct CoordSysTexts {
    const char* source;         ///< of the exceptions, such as "BRefRSF::Read"
    const char* thrown_source;  ///< of the exception that stands for one of the look-up's own
    /// The log line for a failure of the look-up with that message.
    std::function<Tellurion::BString(const Tellurion::BString& message)> log_line;
    /// The detail when the look-up finds nothing.
    std::function<Tellurion::BString()> nothing_found;
};

/// Looks a coordinate system up. Empty when there is none, or a
/// BGeoReferenceInvalidCoordSysException where that is a failure.
Tellurion::BSharedPtr<Tellurion::BCoordSys> FindCoordSys(
    const std::function<Tellurion::BSharedPtr<Tellurion::BCoordSys>()>& look_up, OnFailure on_failure,
    const CoordSysTexts& texts);

}  // namespace MapAnchor
