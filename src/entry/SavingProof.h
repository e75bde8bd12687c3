#pragma once

#include "common/policy/DiagnosticParts.h"
#include "common/policy/ReferenceFormat.h"

#include <MapAnchor/BSavingOptions.h>
#include <MapAnchor/BSavingProof.h>
#include <Tellurion/BGeoReference.h>

#include <limits>
#include <string>
#include <vector>

namespace MapAnchor {

/// What a proof is made of.
struct BSavingProof::Parts {
    static constexpr double kUnknown = std::numeric_limits<double>::quiet_NaN();

    bool is_read = false;
    bool is_exact = false;
    bool is_confirmed = false;
    double pixels = kUnknown;
    double metres = kUnknown;
    bool is_same_system = false;
    double system_metres = kUnknown;
    std::string text = "not read back";
    std::vector<BDiagnostic> diagnostics = {};
};

/// The row of the kind that a save of that file makes; null when there is none.
const ReferenceFormat* FindSavedKind(const Tellurion::BString& file, const BSavingOptions& options);

/// True when a save of these options keeps a part.
bool KeepsPart(Keeps keeps, const BSavingOptions& options, const ReferenceFormat& kind);

/// Reads the file back twice and compares; `meant` begins at the corner.
BSavingProof ProveSave(const ReferenceFormat& kind, const Tellurion::BString& file,
                       const Tellurion::BGeoReference& meant, const BSavingOptions& options);

}  // namespace MapAnchor
