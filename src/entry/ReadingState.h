#pragma once

#include "common/policy/DiagnosticParts.h"
#include "common/policy/ReferenceFormat.h"

#include <MapAnchor/BGeoPDFPage.h>
#include <MapAnchor/BReading.h>
#include <Tellurion/BException.h>

#include <exception>
#include <optional>
#include <vector>

namespace MapAnchor {

/// A failure in parts; any of the texts but the type may be empty.
struct ReadingFailure {
    Tellurion::BString type;
    Tellurion::BString message = {};
    Tellurion::BString source = {};
    Tellurion::BString detail = {};
    std::exception_ptr error = {};  ///< of the family, or std::bad_alloc

    Tellurion::BString Text() const;
    /// The failure that is being handled, to be called in a catch (...) block.
    static ReadingFailure Current();
    template <class Error>
    static ReadingFailure Of(const Tellurion::BString& detail) {
        const Error error("BReading::Of", detail);
        return {error.GetTypeName(), error.GetMessageText(), error.GetSource(), detail,
                std::make_exception_ptr(error)};
    }
};

/// What a reading holds, and what its steps fill.
struct ReadingState {
    Tellurion::BString file;
    BReading::EOutcome outcome = BReading::EOutcome::Read;
    std::optional<ReadingFailure> failure;
    Tellurion::BGeoReference reference;
    Tellurion::BString used_file;
    std::vector<Tellurion::BString> files;
    const ReferenceFormat* kind = nullptr;
    bool by_name = true;
    long width = 0;
    long height = 0;
    long stated_width = 0;  ///< as the file that was read states it; 0 for none
    long stated_height = 0;
    bool is_raster = false;               ///< GDAL opened it
    std::optional<bool> centre_anchored;  ///< of this file; empty for what its kind has
    std::optional<BGeoPDFPage> page;
    std::vector<BDiagnostic> diagnostics;
    bool explains = false;  ///< readers state where values are written
    std::vector<BReading::Origin> origins;
    std::vector<Tellurion::BControlPoint> exact_points;  ///< see ReadNotes

    bool IsCentreAnchored() const { return centre_anchored.value_or(kind && kind->centre_anchored); }
    void Add(const DiagnosticParts& parts) { diagnostics.push_back(parts.Make()); }
};

}  // namespace MapAnchor
