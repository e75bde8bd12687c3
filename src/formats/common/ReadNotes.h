#pragma once

#include "common/DiagnosticParts.h"

#include <Tellurion/BString.h>

#include <vector>

namespace MapAnchor {

/// What readers know beyond the reference: the raster's size, further files, doubts. Readers
/// fill the one that listens in their thread, and do without where none does:
///
///     if (ReadNotes* const notes = ReadNotes::Current()) notes->Add({.id = ...});
class ReadNotes {
public:
    ReadNotes();
    ~ReadNotes();
    ReadNotes(const ReadNotes&) = delete;
    ReadNotes& operator=(const ReadNotes&) = delete;

    static ReadNotes* Current();  ///< null when nothing listens in this thread

    /// Where a value of the reference comes from.
    struct Origin {
        const char* value;  ///< such as "transform"
        Tellurion::BString file;
        Tellurion::BString place;  ///< a line, a tag, an object
    };

    void Add(const DiagnosticParts& parts) { diagnostics.push_back(parts.Make()); }
    void AddOrigin(const char* value, const Tellurion::BString& file, const Tellurion::BString& place) {
        origins.push_back({value, file, place});
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
    std::vector<Tellurion::BString> files;  ///< that took part beside the one that was named
    std::vector<BDiagnostic> diagnostics;
    std::vector<Origin> origins;

private:
    ReadNotes* outer_;
};

/// The largest distance in pixels between places as a source states them and as whole pixels.
class DroppedFractions {
public:
    void Count(double column, double row, long whole_column, long whole_row);
    /// Adds the diagnostic "points-rounded" where something was dropped.
    void Report(const Tellurion::BString& file) const;

private:
    double largest_ = 0.0;
    std::size_t count_ = 0;
    std::size_t points_ = 0;
};

}  // namespace MapAnchor
