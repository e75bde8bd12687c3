#pragma once

#include "common/policy/DiagnosticParts.h"

#include <MapAnchor/Internal.h>
#include <Tellurion/BControlPoint.h>
#include <Tellurion/BString.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace MapAnchor {

/// What readers know beyond the reference: the raster's size, further files, doubts. Readers
/// fill the one that listens in their thread, and do without where none does:
///
///     if (ReadNotes* const notes = ReadNotes::Current()) notes->Add({.id = ...});
class MAPANCHOR_INTERNAL ReadNotes {
public:
    /// With `explains`, readers also state where each value is written.
    explicit ReadNotes(bool explains = false);
    ~ReadNotes();
    ReadNotes(const ReadNotes&) = delete;
    ReadNotes& operator=(const ReadNotes&) = delete;

    static ReadNotes* Current();     ///< null when nothing listens in this thread
    static ReadNotes* Explaining();  ///< the same, but null where origins are not asked for

    /// Where a value of the reference comes from.
    struct Origin {
        const char* value;  ///< such as "position"
        Tellurion::BString file;
        Tellurion::BString place;  ///< a line, a tag, an object
    };

    void Add(const DiagnosticParts& parts) { diagnostics.push_back(parts.Make()); }
    /// A value without a place is left out.
    void AddOrigin(const char* value, const Tellurion::BString& file, const Tellurion::BString& place) {
        if (!place.IsEmpty()) origins.push_back({value, file, place});
    }
    void SetRasterSize(long columns, long rows) {
        width = columns;
        height = rows;
    }

    /// The size that a file beside the raster states of it.
    void SetStatedSize(long columns, long rows) {
        stated_width = columns;
        stated_height = rows;
    }

    long stated_width = 0;  ///< 0 when the file states none
    long stated_height = 0;
    long width = 0;  ///< of the raster; 0 when the reader does not state it
    long height = 0;
    /// Where column 0, row 0 of this file's affine is, if that is not where its kind has it.
    std::optional<bool> centre_anchored;
    std::vector<Tellurion::BString> files;  ///< that took part beside the one that was named
    std::vector<BDiagnostic> diagnostics;
    std::vector<Origin> origins;
    /// The control points as the file states them; empty where the reference holds all of them.
    std::vector<Tellurion::BControlPoint> exact_points;

private:
    ReadNotes* outer_;
    bool explains_;
};

/// "line 3", or "lines 3 to 7"; empty for a line that was not met (0).
std::string LinePlace(long first, long last = 0);
/// "byte 198", counted from 0.
MAPANCHOR_INTERNAL std::string BytePlace(std::uint64_t offset);

/// The distances in pixels between places as a source states them and as whole pixels.
class MAPANCHOR_INTERNAL DroppedFractions {
public:
    void Count(double column, double row, long whole_column, long whole_row);
    /// Adds the diagnostic "points-rounded" where something was dropped.
    void Report(const Tellurion::BString& file) const;

private:
    struct Loss {
        std::size_t points = 0;
        double largest = 0.0;
    };
    Loss fractions_;
    Loss moves_;
    std::size_t points_ = 0;
};

}  // namespace MapAnchor
