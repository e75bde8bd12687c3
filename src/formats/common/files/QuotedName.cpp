#include "common/files/QuotedName.h"

#include <Tellurion/BLogger.h>

#include <algorithm>
#include <string>

namespace MapAnchor {

using Tellurion::BLogger;
using Tellurion::BString;
using Tellurion::ELogSeverity;

namespace {

constexpr char16_t Quotable(char16_t unit) {
    if (unit == u'"') return u'\'';
    return unit == u'\n' || unit == u'\r' || unit == u'\0' ? u' ' : unit;
}

bool IsContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

}  // namespace

std::size_t EndOfCharacter(std::string_view text, std::size_t most) {
    if (text.size() <= most) return text.size();
    while (most > 0 && IsContinuation(text[most]))
        --most;
    return most;
}

BString QuotedName(const BString& name, std::size_t most, const char* source) {
    std::u16string units = name.GetUnits();
    std::transform(units.begin(), units.end(), units.begin(), Quotable);
    BString quoted(units);
    const std::string bytes = quoted.StdStr();
    if (bytes.size() > most) quoted = BString(bytes.substr(0, EndOfCharacter(bytes, most)));
    if (quoted != name)
        BLogger::Instance()->WriteLine(ELogSeverity::Error, "%s The name <%ls> is written as <%ls>", source,
                                       name, quoted);
    return quoted;
}

}  // namespace MapAnchor
