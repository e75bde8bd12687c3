#include "common/scanning/TextLines.h"

#include <Tellurion/Charsets.h>

namespace MapAnchor {

bool TextLines::Next(std::string_view& line) {
    if (!file_.ReadLineBytes(line)) return false;
    if (!Tellurion::IsAscii(line)) {
        recoded_ = Tellurion::DecodeLine(line).StdStr();
        line = recoded_;
    }
    line = line.substr(0, line.find('\0'));
    return true;
}

}  // namespace MapAnchor
