#pragma once

#include "common/policy/ReadNotes.h"

#include <Tellurion/BFile.h>
#include <Tellurion/BPointPair.h>
#include <Tellurion/BString.h>
#include <Tellurion/TextPieces.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace MapAnchor {

/// The content of an RSF file: a header, rows of control points, and from version 3 on a
/// block that names the coordinate system. Reading stops at the first fault.
struct RsfFile {
    enum class Fault {
        None,
        NoHeader,   ///< no first line, or one of less than two characters
        BadHeader,  ///< not two numbers
        NoRow,      ///< the file ends before its rows do
        BadRow,     ///< a row that does not scan
    };
    static constexpr std::size_t kBlockLines = 4;
    /// A quoted name ends here at the latest, in bytes of UTF-8.
    static constexpr std::size_t kLongestName = 255;

    Fault fault = Fault::None;
    Tellurion::BString faulty_line;  ///< the header or the row
    std::int32_t faulty_row = 0;     ///< from 0

    std::int32_t version = 0;
    std::int32_t count = 0;  ///< of rows, as the header says
    std::vector<Tellurion::BPointPair> points;
    DroppedFractions dropped;

    std::vector<Tellurion::BString> block;  ///< up to four lines
    bool has_mode = false;                  ///< the reference mode's line came, version 4 only
    Tellurion::BString wkt;                 ///< the lines behind it, joined

    /// Comments among the rows count as rows, so a file with an honest count and
    /// comments does not hold what it says.
    bool HoldsItsCount() const { return static_cast<std::int64_t>(points.size()) == count; }
    bool HasBlock() const { return block.size() == kBlockLines; }
    /// The first line behind the rows, from 1.
    long LineOfBlock() const { return long{count} + 2; }
};

/// Which pixels a row may name.
enum class RsfPixels {
    Whole,
    AlsoFractions,  ///< a row that fails is scanned again, its pixels cut to whole ones
};

RsfFile ParseRsf(Tellurion::BFile& file, RsfPixels pixels);

/// The header and the rows of a version 4 file.
void FormatRsfPoints(const std::vector<Tellurion::BPointPair>& points, Tellurion::TextPieces out);
/// The block behind them; ends without a line end.
Tellurion::BString FormatRsfBlock(const Tellurion::BString& wkt);

}  // namespace MapAnchor
