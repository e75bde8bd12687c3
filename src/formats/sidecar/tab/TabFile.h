#pragma once

#include "common/policy/ReadNotes.h"

#include <Tellurion/BFile.h>
#include <Tellurion/BPointPair.h>
#include <Tellurion/BString.h>
#include <Tellurion/TextPieces.h>

#include <vector>

namespace MapAnchor {

/// The two marks and the control points of a TAB file; its CoordSys clause is the
/// coordinate system repository's. Lines that are neither are passed over.
struct TabFile {
    bool has_table_mark = false;   ///< "!table" in any case
    bool has_raster_mark = false;  ///< "RASTER", in capitals alone
    std::vector<Tellurion::BPointPair> points;
    DroppedFractions dropped;
    long first_point_line = 0;  ///< from 1; 0 without points
    long last_point_line = 0;
    long clause_line = 0;  ///< of the word CoordSys; 0 for none and where nobody asks for it

    bool IsRaster() const { return has_table_mark && has_raster_mark; }
};

TabFile ParseTab(Tellurion::BFile& file);

/// The lines of a TAB file up to its clause, in the charset that they state,
/// Windows-1252. What that cannot hold is written as "?" and logged.
void FormatTab(const std::vector<Tellurion::BPointPair>& points, const Tellurion::BString& image_name,
               Tellurion::TextPieces out);

/// The clause of a reference without a system; has no line end.
extern const char kDefaultTabClause[];

}  // namespace MapAnchor
