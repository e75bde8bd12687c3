#pragma once

#include <string>
#include <string_view>

namespace Tellurion {

class BFile;

/// The CoordSys clause of a MapInfo text, read to its last word.
struct MapInfoClause {
    bool found = false;
    /// Why it cannot be understood; empty for a clause that can.
    std::string fault;
    /// One line in the form that OGR takes, without the word CoordSys: projection
    /// type, datum, unit and parameters, checked for what they need.
    std::string text;
};

/// Looks for the clause in the lines of an open file; any number of points may stand
/// before it.
MapInfoClause ReadMapInfoClause(BFile& file);

/// Reads a clause from the text behind the word CoordSys; what follows it is ignored.
MapInfoClause ParseMapInfoClause(std::string_view text);

}  // namespace Tellurion
