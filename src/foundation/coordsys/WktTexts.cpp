#include "coordsys/WktTexts.h"

#include "coordsys/Names.h"

#include <string_view>

namespace Tellurion {
namespace {

// A text that is longer than this describes no system, and takes PROJ long to refuse.
constexpr std::size_t kLongestText = 100'000;

// PROJ follows no text as deep as this.
constexpr int kDeepestNesting = 32;

/// The word of a coordinate reference system ends so in both versions, and a bracket
/// follows it.
bool StartsLikeSystem(std::string_view text) {
    const std::size_t end = text.find_first_of("[( \t\r\n");
    if (end == std::string_view::npos) return false;
    const std::string word = UpperAscii(text.substr(0, end));
    const std::size_t next = text.find_first_not_of(" \t\r\n", end);
    return (word.ends_with("CS") || word.ends_with("CRS")) && next != std::string_view::npos &&
           (text[next] == '[' || text[next] == '(');
}

/// Whether the first bracket closes, quoted texts apart, and no nesting is too deep.
bool Closes(std::string_view text) {
    int depth = 0;
    bool quoted = false;
    for (const char c : text) {
        if (c == '"') quoted = !quoted;
        if (quoted) continue;
        if ((c == '[' || c == '(') && ++depth > kDeepestNesting) return false;
        if ((c == ']' || c == ')') && --depth <= 0) return depth == 0;
    }
    return false;
}

/// What can be no system is refused before PROJ takes it to pieces. Typographic quotes
/// are left to it.
bool MayBeSystem(std::string_view text) {
    constexpr std::string_view kTypographicQuote = "\xE2\x80\x9C";
    return text.find('\0') == std::string_view::npos && StartsLikeSystem(text) &&
           (text.find(kTypographicQuote) != std::string_view::npos || Closes(text));
}

BString Export(PJ* crs, PJ_WKT_TYPE flavour) {
    const char* const options[] = {"MULTILINE=NO", nullptr};
    return BString(proj_as_wkt(Proj::ThreadContext(), crs, flavour, options));
}

}  // namespace

std::string CleanWkt(const BString& text) {
    if (text.GetLength() > kLongestText) return {};
    BString trimmed = text;
    if (trimmed.StartsWith(BString(std::u16string(u"\uFEFF"))))
        trimmed = trimmed.Right(trimmed.GetLength() - 1);
    std::string cleaned = trimmed.Trim().StdStr();
    if (!MayBeSystem(cleaned)) return {};
    // Sidecars with heights of an unknown datum have this word outside the quotes.
    constexpr std::string_view kWithWord = "COMPD_CS[Vertical \"";
    if (cleaned.starts_with(kWithWord)) cleaned.replace(0, kWithWord.size(), "COMPD_CS[\"");
    return cleaned;
}

BString ExportWkt(PJ* crs) {
    return Export(crs, PJ_WKT1_GDAL);
}

BString ExportPrj(PJ* crs) {
    return Export(crs, PJ_WKT1_ESRI);
}

BString WebMercatorPrj() {
    const Proj::Object crs(
        proj_create_from_database(Proj::ThreadContext(), "EPSG", "3857", PJ_CATEGORY_CRS, 0, nullptr));
    BString text = crs ? ExportPrj(crs.get()) : BString();
    text.ReplaceAll("PROJCS[\"WGS_1984_Web_Mercator_Auxiliary_Sphere\"", "PROJCS[\"WGS_84_Pseudo_Mercator\"");
    text.ReplaceAll("[\"Auxiliary_Sphere_Type\",0.0]", "[\"Auxiliary_Sphere_Type\",0]");
    return text;
}

}  // namespace Tellurion
