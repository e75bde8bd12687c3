#pragma once

#include <Tellurion/BFile.h>

#include <string>
#include <string_view>

namespace MapAnchor {

/// The lines of an open text file in UTF-8, without the cost of a BString for each.
/// As with any C text a line ends at its first NUL.
class TextLines {
public:
    explicit TextLines(Tellurion::BFile& file) : file_(file) {}

    /// The next line; false when there is none. The view holds until the next call.
    bool Next(std::string_view& line);

private:
    Tellurion::BFile& file_;
    std::string recoded_;
};

}  // namespace MapAnchor
