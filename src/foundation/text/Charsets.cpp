#include <Tellurion/Charsets.h>

#include "text/Unicode.h"

namespace Tellurion {

BString DecodeLine(std::string_view bytes) {
    return Unicode::IsUtf8(bytes) ? BString(Unicode::FromUtf8(bytes))
                                  : BString(Unicode::FromWindows1252(bytes));
}

bool IsAscii(std::string_view bytes) {
    unsigned char bits = 0;
    for (const char c : bytes)
        bits |= static_cast<unsigned char>(c);
    return bits < 0x80;
}

std::string EncodeWindows1252(const BString& text, bool& lossy) {
    return Unicode::ToWindows1252(text.GetUnits(), lossy);
}

}  // namespace Tellurion
