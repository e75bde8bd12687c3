#include "Systems.h"

#include "Conversion.h"

#include <Tellurion/BCoordSysRepository.h>

#include <algorithm>
#include <cctype>
#include <iterator>
#include <sstream>
#include <vector>

using Tellurion::BCoordSys;
using Tellurion::BCoordSysRepository;
using Tellurion::BString;

namespace {

std::vector<std::string> SplitWords(const std::string& text) {
    std::istringstream in(text);
    return {std::istream_iterator<std::string>(in), {}};
}

std::string Lower(std::string text) {
    std::ranges::transform(text, text.begin(), [](unsigned char c) { return std::tolower(c); });
    return text;
}

BCoordSys* FromNames(const std::string& text) {
    BCoordSysRepository& repository = *BCoordSysRepository::Instance();
    const std::vector<std::string> words = SplitWords(text);
    if (words.size() == 1) return repository.GetCoordSys({"ERMapper", BString(words[0])});
    if (words.size() != 2 && words.size() != 3) return nullptr;
    const BString units = words.size() == 3 ? BString(words[2]) : BString();
    return repository.ReadCoordSysFromPlainTextStrings(BString(words[0]), BString(words[1]), units);
}

}  // namespace

/// Each kind of text has a mark that no other has.
SystemAnswer SystemFromText(const std::string& text) {
    const std::string lower = Lower(text);
    const auto answer = [](BCoordSys* system, const char* understood_as) {
        return SystemAnswer{std::unique_ptr<BCoordSys>(system), understood_as};
    };
    if (text.find('[') != std::string::npos)
        return answer(BCoordSys::FromWKT(BString(text)), "well-known text");
    if (lower.starts_with("coordsys") || lower.starts_with("earth ") || lower.starts_with("nonearth "))
        return answer(BCoordSysRepository::Instance()->ReadCoordSysFromMIFString(BString(text)),
                      "MapInfo clause");
    if (BCoordSys* system = BCoordSys::FromEPSGCode(BString(text))) return answer(system, "EPSG code");
    return answer(FromNames(text), "names");
}

bool IsSameSystem(const BCoordSys& a, const BCoordSys& b) {
    const BString code = a.ToEPSGCode();
    if (!code.IsEmpty() && code == b.ToEPSGCode()) return true;
    return HasSameDefinition(a, b);
}

std::string TitleOf(const BCoordSys& system) {
    const std::string name = system.GetName().StdStr();
    return name.empty() ? "without a name" : name;
}

std::string NameOf(const BCoordSys& system) {
    const std::string name = system.GetName().StdStr();
    const std::string code = system.ToEPSGCode().StdStr();
    if (name.empty() || code.empty()) return name.empty() && !code.empty() ? code : TitleOf(system);
    return name + " (" + code + ")";
}
