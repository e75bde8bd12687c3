#include "crs/ArcInfoText.h"

#include "crs/DefinitionCaches.h"
#include "crs/Names.h"
#include "crs/OgrTexts.h"

#include <string>
#include <string_view>
#include <vector>

namespace Tellurion {
namespace {

constexpr std::size_t kMostLines = 64;
constexpr std::size_t kLongestLine = 200;

/// The lines that are not empty, without blanks around them; none when they cannot
/// be those of a PRJ file.
std::vector<std::string> SplitLines(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r";
    std::vector<std::string> lines;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        line.remove_prefix(std::min(line.find_first_not_of(kBlanks), line.size()));
        line = line.substr(0, line.find_last_not_of(kBlanks) + 1);
        if (line.empty()) continue;
        if (line.size() > kLongestLine || lines.size() == kMostLines) return {};
        lines.emplace_back(line);
    }
    return lines;
}

CoordSysDefinition::Ptr ReadArcInfo(const BString& text) {
    const std::vector<std::string> lines = SplitLines(text.StdStr());
    if (lines.empty() || !LowerAscii(lines.front()).starts_with("projection")) return nullptr;
    const CoordSysDefinition::Ptr read = CoordSysDefinition::FromWkt(BString(WktOfArcInfo(lines)));
    return read && read->GetKind() != CoordSysDefinition::Kind::Other ? read : nullptr;
}

}  // namespace

CoordSysDefinition::Ptr FindByArcInfoText(const BString& text) {
    return DefinitionCaches::Instance().arc_info_texts.Get(text.GetUnits(),
                                                           [&] { return ReadArcInfo(text); });
}

}  // namespace Tellurion
