#include "crs/WktTexts.h"

#include "crs/AuthalicSphere.h"
#include "crs/Identification.h"
#include "crs/Names.h"

#include <Tellurion/Numbers.h>

#include <string_view>
#include <utility>

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

constexpr std::string_view kMetadata = "COORDINATEMETADATA[";

/// The system inside the metadata, which end with EPOCH[number]]; empty when they do not.
std::string TakeEpoch(const std::string& text, double& epoch) {
    constexpr std::string_view kEpoch = "EPOCH[";
    constexpr double kLastYear = 10'000.0;
    const std::string upper = UpperAscii(text);
    const std::size_t at = upper.rfind(kEpoch);
    if (at == std::string::npos) return {};
    std::string_view rest = std::string_view(text).substr(at + kEpoch.size());
    const std::size_t comma = text.rfind(',', at);
    if (comma == std::string::npos || comma < kMetadata.size() || !ScanDouble(rest, epoch) ||
        LettersAndDigits(rest) != "" || !(epoch > 0.0 && epoch < kLastYear)) {
        epoch = 0.0;
        return {};
    }
    return BString(text.substr(kMetadata.size(), comma - kMetadata.size())).Trim().StdStr();
}

BString Export(PJ* crs, PJ_WKT_TYPE flavour, const char* axes = "OUTPUT_AXIS=AUTO") {
    const char* const options[] = {"MULTILINE=NO", axes, nullptr};
    return BString(proj_as_wkt(Proj::ThreadContext(), crs, flavour, options));
}

/// The grid of a compound system, else the system itself.
Proj::Object GridOf(PJ* crs) {
    PJ_CONTEXT* context = Proj::ThreadContext();
    Proj::Object grid(proj_clone(context, crs));
    if (grid && proj_get_type(grid.get()) == PJ_TYPE_COMPOUND_CRS)
        grid.reset(proj_crs_get_sub_crs(context, grid.get(), 0));
    if (grid && proj_get_type(grid.get()) == PJ_TYPE_BOUND_CRS)
        grid.reset(proj_get_source_crs(context, grid.get()));
    return grid;
}

/// True for a grid whose axes readers would not guess: a text without them means easting
/// and northing. PROJ leaves them out of version 1 wherever it may.
bool HasOddAxes(PJ* crs) {
    const Proj::Object grid = GridOf(crs);
    return grid && proj_get_type(grid.get()) == PJ_TYPE_PROJECTED_CRS && !Proj::HasAxesEastNorth(grid.get());
}

/// PROJ 9.9 writes the cylindrical equal area projection on a sphere with EPSG's names, which no
/// reader knows. True if the text had such names.
bool TranslateParameters(BString& text) {
    constexpr std::pair<const char*, const char*> kNames[] = {
        {"\"Latitude of 1st standard parallel\"", "\"standard_parallel_1\""},
        {"\"Longitude of natural origin\"", "\"central_meridian\""},
        {"\"False easting\"", "\"false_easting\""},
        {"\"False northing\"", "\"false_northing\""}};
    if (text.StdStr().find("PARAMETER[\"False easting\"") == std::string::npos) return false;
    for (const auto& [epsg, esri] : kNames)
        text.ReplaceAll(epsg, esri);
    return true;
}

}  // namespace

std::string CleanWkt(const BString& text, double& epoch) {
    epoch = 0.0;
    if (text.GetLength() > kLongestText) return {};
    BString trimmed = text;
    if (trimmed.StartsWith(BString(std::u16string(u"\uFEFF"))))
        trimmed = trimmed.Right(trimmed.GetLength() - 1);
    std::string cleaned = trimmed.Trim().StdStr();
    if (UpperAscii(std::string_view(cleaned).substr(0, kMetadata.size())) == kMetadata)
        cleaned = TakeEpoch(cleaned, epoch);
    if (!MayBeSystem(cleaned)) return {};
    // Sidecars with heights of an unknown datum have this word outside the quotes.
    constexpr std::string_view kWithWord = "COMPD_CS[Vertical \"";
    if (cleaned.starts_with(kWithWord)) cleaned.replace(0, kWithWord.size(), "COMPD_CS[\"");
    return cleaned;
}

BString WithEpoch(const BString& wkt, double epoch) {
    if (wkt.IsEmpty() || epoch == 0.0) return wkt;
    return BString(std::string(kMetadata)) + wkt + BString(",EPOCH[" + PrintShortest(epoch) + "]]");
}

BString ExportWkt(PJ* crs) {
    BString text = Export(crs, PJ_WKT1_GDAL, HasOddAxes(crs) ? "OUTPUT_AXIS=YES" : "OUTPUT_AXIS=AUTO");
    if (const Proj::Object grid = GridOf(crs); grid && IsOnAuthalicSphere(grid.get()))
        text = StateAuthalicSphere(grid.get(), text);
    return text.IsEmpty() ? ExportWkt2(crs) : text;
}

BString ExportWkt2(PJ* crs) {
    return Export(crs, PJ_WKT2_2019, "OUTPUT_AXIS=YES");
}

/// The flavour states no axes, and no projection on the authalic sphere: of such systems only a
/// text that reads back to the same positions is given out.
BString ExportPrj(PJ* crs) {
    BString text = Export(crs, PJ_WKT1_ESRI);
    const bool translated = TranslateParameters(text);
    if (text.IsEmpty() || (!translated && !HasOddAxes(crs) && !IsOnAuthalicSphere(crs))) return text;
    const Proj::Object back(
        proj_create_from_wkt(Proj::ThreadContext(), text.Utf8(), nullptr, nullptr, nullptr));
    return back && IsSamePlacement(back.get(), GridOf(crs).get()) ? text : BString();
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
