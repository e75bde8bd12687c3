#include "crs/WebMercatorText.h"

#include "crs/Names.h"

#include <Tellurion/Numbers.h>

#include <cmath>
#include <optional>
#include <string>

namespace Tellurion {
namespace {

constexpr std::string_view kNames =
    "WGS84WEBMERCATOR|WGS1984WEBMERCATOR|WGS1984WEBMERCATORAUXILIARYSPHERE|WGS84PSEUDOMERCATOR|"
    "GOOGLEMAPSGLOBALMERCATOR|POPULARVISUALISATIONCRSMERCATOR";

/// Upper case, without blanks and underscores, quotes and brackets kept: a text in which
/// keywords and names can be searched.
std::string Fold(std::string_view text) {
    std::string folded;
    for (const char c : UpperAscii(text))
        if (c != ' ' && c != '_' && c != '\t' && c != '\r' && c != '\n')
            folded += c == '(' ? '[' : c == ')' ? ']' : c;
    return folded;
}

/// What is written between the mark and the next quote, comma or bracket.
std::optional<std::string_view> After(std::string_view text, std::string_view mark) {
    const std::size_t at = text.find(mark);
    if (at == std::string_view::npos) return std::nullopt;
    text.remove_prefix(at + mark.size());
    return text.substr(0, text.find_first_of("\",]"));
}

std::optional<double> NumberAfter(std::string_view text, std::string_view mark) {
    auto found = After(text, mark);
    double number = 0.0;
    if (!found || !ScanDouble(*found, number)) return std::nullopt;
    return number;
}

/// Absent or this number.
bool IsIfStated(std::string_view text, std::string_view mark, double wanted) {
    const auto number = NumberAfter(text, mark);
    return text.find(mark) == std::string_view::npos || (number && std::abs(*number - wanted) < 1e-9);
}

/// The axis of WGS 84, degrees on Greenwich, metres, and an origin without an offset.
bool HasItsNumbers(std::string_view text, std::string_view ellipsoid) {
    constexpr double kSemiMajor = 6378137.0;
    const std::size_t name_end = ellipsoid.find("\",");
    const std::size_t projection = text.find("PROJECTION[");
    const std::size_t unit = text.rfind("],UNIT[\"");
    if (name_end == ellipsoid.npos || unit == text.npos || unit < projection) return false;
    const auto axis = NumberAfter(ellipsoid, "\",");
    const auto metres = NumberAfter(text.substr(text.find("\",", unit + 8)), "\",");
    return axis && *axis == kSemiMajor && metres && *metres == 1.0 &&
           IsIfStated(text, "PRIMEM[\"GREENWICH\",", 0.0) && text.find("PRIMEM[\"GREENWICH\"") != text.npos &&
           IsIfStated(text, "\"FALSEEASTING\",", 0.0) && IsIfStated(text, "\"FALSENORTHING\",", 0.0) &&
           IsIfStated(text, "\"CENTRALMERIDIAN\",", 0.0) && IsIfStated(text, "\"STANDARDPARALLEL1\",", 0.0) &&
           IsIfStated(text, "\"LATITUDEOFORIGIN\",", 0.0) && IsIfStated(text, "\"SCALEFACTOR\",", 1.0) &&
           IsIfStated(text, "\"AUXILIARYSPHERETYPE\",", 0.0);
}

// Most texts are decided by a look at a few bytes.
bool MayBeProjected(std::string_view text) {
    constexpr std::size_t kMaxLength = 4000;
    return text.size() <= kMaxLength && UpperAscii(text.substr(0, 6)) == "PROJCS";
}

bool IsWebMercatorName(std::string_view upper) {
    return ListHas(kNames, LettersAndDigits(upper));
}

/// A PROJ string inside the text says what it means.
bool HasExtension(std::string_view folded) {
    return folded.find("EXTENSION[") != folded.npos;
}

}  // namespace

bool IsWebMercatorText(std::string_view text) {
    if (!MayBeProjected(text)) return false;
    const std::string folded = Fold(text);
    const auto method = After(folded, "PROJECTION[\"");
    const std::size_t spheroid = folded.find("SPHEROID[\"");
    if (!method || !method->starts_with("MERCATOR") || spheroid == folded.npos || HasExtension(folded))
        return false;
    const std::string_view ellipsoid = std::string_view(folded).substr(spheroid + 10);
    const bool named = IsWebMercatorName(After(folded, "PROJCS[\"").value_or(""));
    const bool auxiliary =
        *method == "MERCATORAUXILIARYSPHERE" || ellipsoid.starts_with("WGS1984MAJORAUXILIARYSPHERE");
    return (named || auxiliary) && HasItsNumbers(folded, ellipsoid);
}

std::string_view MisleadingName(std::string_view text) {
    if (!MayBeProjected(text)) return {};
    const std::size_t start = text.find('"');
    const std::string_view name = start == text.npos
                                      ? std::string_view()
                                      : text.substr(start + 1, text.find('"', start + 1) - start - 1);
    if (!IsWebMercatorName(UpperAscii(name)) || HasExtension(Fold(text)) || IsWebMercatorText(text))
        return {};
    return name;
}

}  // namespace Tellurion
