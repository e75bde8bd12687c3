#include "wide/MapChoice.h"

#include "PdfParameters.h"

#include <MapAnchor/BReadParametersException.h>

#include <charconv>

namespace MapAnchor {

using Tellurion::BParamList;
using Tellurion::BString;
using VellumLib::WideDocument;
using VellumLib::WideMap;
using VellumLib::WidePage;
using VellumLib::WidePages;

namespace {

/// A whole number from 1, or 0.
std::size_t NumberIn(const std::string& text) {
    std::size_t number = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    return result.ec == std::errc() && result.ptr == text.data() + text.size() ? number : 0;
}

std::string NamesOf(const std::vector<WideMap>& maps) {
    constexpr std::size_t kMaxNamed = 8;
    std::string text;
    for (std::size_t i = 0; i < maps.size() && i < kMaxNamed; ++i) {
        text += (text.empty() ? "" : ", ") + std::to_string(i + 1);
        if (!maps[i].name.empty()) text += " (" + maps[i].name + ")";
    }
    return maps.size() > kMaxNamed ? text + ", ..." : text;
}

}  // namespace

long PageOf(const BParamList* params) {
    return params ? params->GetInteger(PdfParameters::kPage, 1) : 1;
}

std::string PasswordOf(const BParamList* params) {
    return params ? params->GetString(PdfParameters::kPassword, BString()).StdStr() : std::string();
}

WidePage PageAt(const WidePages& pages, long number) {
    if (number >= 1 && static_cast<std::size_t>(number) <= pages.Count())
        return pages.Page(static_cast<std::size_t>(number) - 1);
    if (pages.Count() == 0) throw BReadParametersException("The PDF has no pages that can be found.");
    throw BReadParametersException(BString::Format("The PDF has no page %ld; its pages are 1 to %ld.", number,
                                                   static_cast<long>(pages.Count())));
}

std::size_t ChooseMap(WideDocument& document, const WidePage& page, long number,
                      const std::vector<WideMap>& maps, const BParamList* params) {
    const std::string wish = params ? params->GetString(PdfParameters::kMap, BString()).StdStr() : "";
    if (wish.empty())
        return VellumLib::DefaultMap(maps, number == 1 ? document.MapOfRules(page, maps) : std::nullopt);
    for (std::size_t i = 0; i < maps.size(); ++i)
        if (maps[i].name == wish) return i;
    if (wish == "largest") return VellumLib::LargestMap(maps);
    if (wish == "last" && !maps.empty()) return maps.size() - 1;
    if (const std::size_t index = NumberIn(wish); index >= 1 && index <= maps.size()) return index - 1;
    throw BReadParametersException(
        BString::Format("The page has no map %s; its maps are %s.", BString(wish), BString(NamesOf(maps))));
}

}  // namespace MapAnchor
