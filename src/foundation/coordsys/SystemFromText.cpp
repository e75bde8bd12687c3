#include "coordsys/SystemFromText.h"

#include "crs/ArcInfoText.h"
#include "crs/DefinitionCaches.h"
#include "crs/Names.h"

#include <Tellurion/BCoordSys.h>
#include <Tellurion/BCoordSysRepository.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace Tellurion {
namespace {

using Ptr = CoordSysDefinition::Ptr;

// As for well-known text: what is longer describes no system.
constexpr std::size_t kMaxLength = 100'000;

Ptr DefinitionOf(BCoordSys* made) {
    const std::unique_ptr<BCoordSys> system(made);
    return system ? system->GetDefinition() : nullptr;
}

/// Kept like other texts; what only heights or nothing has a place for is no answer.
Ptr FindByProj(const std::string& text) {
    const BString key(text);
    const Ptr found = DefinitionCaches::Instance().proj_texts.Get(
        key.GetUnits(), [&] { return CoordSysDefinition::FromProjText(text); });
    return found && found->GetKind() != CoordSysDefinition::Kind::Other ? found : nullptr;
}

bool IsWord(std::string_view text, std::string_view others) {
    return !text.empty() && std::ranges::all_of(text, [others](char c) {
        return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
               others.find(c) != others.npos;
    });
}

/// The length of the issuer in "EPSG:25832", "EPSG::25832" and "EPSG:25832+7837"; 0 for a
/// text of another form.
std::size_t IssuerLength(std::string_view text) {
    constexpr std::size_t kMaxIssuer = 32;
    const std::size_t colon = text.find(':');
    if (colon == text.npos || colon > kMaxIssuer || !IsWord(text.substr(0, colon), "_")) return 0;
    std::string_view code = text.substr(colon + 1);
    if (code.starts_with(':')) code.remove_prefix(1);
    return IsWord(code, "_.+:-") ? colon : 0;
}

Ptr FindByCode(const std::string& text) {
    const std::size_t issuer = IssuerLength(text);
    if (issuer == 0) return DefinitionOf(BCoordSys::FromEPSGCode(BString(text)));
    std::string_view code = std::string_view(text).substr(issuer + 1);
    if (code.starts_with(':')) code.remove_prefix(1);
    const std::string plain = UpperAscii(std::string_view(text).substr(0, issuer)) + ":" + std::string(code);
    const Ptr found =
        plain.starts_with("EPSG:") ? DefinitionOf(BCoordSys::FromEPSGCode(BString(plain))) : nullptr;
    return found ? found : FindByProj(plain);
}

bool IsUri(const std::string& lower) {
    return lower.starts_with("urn:") || lower.starts_with("http://www.opengis.net/") ||
           lower.starts_with("https://www.opengis.net/");
}

bool IsProjString(const std::string& lower) {
    return lower.starts_with("+") || lower.starts_with("proj=") || lower.find(" +proj=") != lower.npos;
}

/// PROJ reads a file for +init; the one that everybody means is the EPSG list.
Ptr FindByProjString(const std::string& text) {
    constexpr std::string_view kInit = "+init=";
    constexpr std::string_view kEpsg = "epsg:";
    const std::string lower = LowerAscii(text);
    if (const std::size_t init = lower.find("init="); init != lower.npos) {
        const std::string_view code = std::string_view(lower).substr(init + kInit.size() - 1);
        if (!code.starts_with(kEpsg)) return nullptr;
        return FindByCode(std::string(code.substr(0, code.find_first_of(" \t"))));
    }
    return FindByProj(lower.find("type=crs") == lower.npos ? text + " +type=crs" : text);
}

Ptr FindByErMapperNames(const std::string& text) {
    std::istringstream in(text);
    const std::vector<std::string> words{std::istream_iterator<std::string>(in), {}};
    BCoordSysRepository& repository = *BCoordSysRepository::Instance();
    if (words.size() == 1) return DefinitionOf(repository.GetCoordSys({"ERMapper", BString(words[0])}));
    if (words.size() != 2 && words.size() != 3) return nullptr;
    const BString units = words.size() == 3 ? BString(words[2]) : BString();
    return DefinitionOf(
        repository.ReadCoordSysFromPlainTextStrings(BString(words[0]), BString(words[1]), units));
}

/// The current system of this very name, of EPSG first; null when there is more than one.
Ptr FindByName(const std::string& name) {
    constexpr PJ_TYPE kTypes[] = {PJ_TYPE_PROJECTED_CRS, PJ_TYPE_GEOGRAPHIC_2D_CRS, PJ_TYPE_GEOGRAPHIC_3D_CRS,
                                  PJ_TYPE_COMPOUND_CRS};
    constexpr std::size_t kMaxNames = 8;
    constexpr std::size_t kMaxName = 256;
    if (name.size() > kMaxName || name.find('\0') != name.npos) return nullptr;
    for (const PJ_TYPE& type : kTypes)
        for (const char* issuer : {"EPSG", "ESRI", "IGNF"}) {
            const Proj::List list(proj_create_from_name(Proj::ThreadContext(), issuer, name.c_str(), &type, 1,
                                                        0, kMaxNames, nullptr));
            Proj::Object only;
            int count = 0;
            for (int i = 0; list && i < proj_list_get_count(list.get()); ++i) {
                Proj::Object found(proj_list_get(Proj::ThreadContext(), list.get(), i));
                if (!found || proj_is_deprecated(found.get())) continue;
                only = std::move(found);
                ++count;
            }
            if (count == 1) return CoordSysDefinition::Make(std::move(only));
        }
    return nullptr;
}

bool IsMapInfoClause(const std::string& lower) {
    return lower.starts_with("coordsys") || lower.starts_with("earth ") || lower.starts_with("nonearth ");
}

Ptr FindByNames(const std::string& text) {
    if (Ptr found = FindByErMapperNames(text)) return found;
    return FindByName(text);
}

}  // namespace

/// Each kind of text has a mark that no other has; the names come last.
NamedSystem FindByText(const BString& given) {
    if (given.GetLength() > kMaxLength) return {};
    const std::string text = BString(given).Trim().StdStr();
    const std::string lower = LowerAscii(text);
    if (text.empty() || text.find('\0') != text.npos) return {};
    if (lower.ends_with(".prj") && text.find('[') == text.npos)
        return {DefinitionOf(BCoordSys::FromFile(BString(text))), "PRJ file"};
    if (text.front() == '{') return {FindByProj(text), "PROJJSON"};
    if (IsMapInfoClause(lower))
        return {DefinitionOf(BCoordSysRepository::Instance()->ReadCoordSysFromMIFString(BString(text))),
                "MapInfo clause"};
    if (text.find('[') != text.npos) return {FindByWkt(given), "well-known text"};
    if (lower.starts_with("projection") && text.find('\n') != text.npos)
        return {FindByArcInfoText(BString(text)), "text of a PRJ file"};
    if (IsProjString(lower)) return {FindByProjString(text), "PROJ string"};
    if (IsUri(lower)) return {FindByProj(text), "identifier"};
    if (Ptr found = FindByCode(text))
        return {found, lower.starts_with("epsg") || IssuerLength(text) == 0 ? "EPSG code" : "code"};
    return {FindByNames(text), "names"};
}

}  // namespace Tellurion
