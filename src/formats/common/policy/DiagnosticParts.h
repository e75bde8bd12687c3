#pragma once

#include <MapAnchor/BDiagnostic.h>

namespace MapAnchor {

/// What a diagnostic is made of.
struct BDiagnostic::Parts {
    const char* id = "";
    ESeverity severity = ESeverity::Warning;
    Tellurion::BString text = {};
    Tellurion::BString file = {};
    long line = 0;
    long long offset = -1;
    Tellurion::BString place = {};

    BDiagnostic Make() const { return BDiagnostic(std::make_shared<const Parts>(*this)); }
};

using DiagnosticParts = BDiagnostic::Parts;

}  // namespace MapAnchor
