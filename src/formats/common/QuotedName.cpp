#include "common/QuotedName.h"

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

std::string CutAtCharacter(const std::string& text, std::size_t most) {
    std::size_t end = most;
    while (end > 0 && IsContinuation(text[end]))
        --end;
    return text.substr(0, end);
}

}  // namespace

BString QuotedName(const BString& name, std::size_t most, const char* source) {
    std::u16string units = name.GetUnits();
    std::transform(units.begin(), units.end(), units.begin(), Quotable);
    BString quoted(units);
    const std::string bytes = quoted.StdStr();
    if (bytes.size() > most) quoted = BString(CutAtCharacter(bytes, most));
    if (quoted != name)
        BLogger::Instance()->WriteLine(ELogSeverity::Error, "%s The name <%ls> is written as <%ls>", source,
                                       name, quoted);
    return quoted;
}

}  // namespace MapAnchor
