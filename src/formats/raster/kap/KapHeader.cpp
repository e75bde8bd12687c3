#include "raster/kap/KapHeader.h"

#include "lookups/CoordSysLookups.h"

#include <Tellurion/Charsets.h>
#include <Tellurion/Numbers.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>

namespace MapAnchor {
namespace {

using Tellurion::BString;
using Tellurion::ParseDouble;
using Tellurion::ParseLong;

constexpr std::size_t kLongestLine = 128;
constexpr std::size_t kPrefix = 4;  // a record's name and its slash
constexpr std::string_view kContinuation = "    ";
constexpr char kCtrlZ = '\x1A';

/// Cuts the next line off the front of `bytes`, without its "\n" or "\r\n".
std::string_view TakeLine(std::string_view& bytes) {
    const std::size_t end = bytes.find('\n');
    std::string_view line = bytes.substr(0, end);
    bytes.remove_prefix(end == std::string_view::npos ? bytes.size() : end + 1);
    if (line.ends_with('\r')) line.remove_suffix(1);
    return line;
}

/// Cuts the text up to the next comma off the front of `text`; a text that is at its
/// end has no further field.
bool TakeField(std::string_view& text, std::string_view& field) {
    if (!text.starts_with(',')) return false;
    text.remove_prefix(1);
    field = text.substr(0, text.find(','));
    text.remove_prefix(field.size());
    return true;
}

bool StartsWith(std::string_view line, std::string_view name) {
    return line.size() >= name.size() && CompareNoCase(line.data(), name.data(), name.size()) == 0;
}

/// The line as a text that ends at its first NUL and after 128 bytes of UTF-8.
std::string LineText(std::string_view line) {
    const std::string text = Tellurion::DecodeLine(line.substr(0, line.find('\0'))).StdStr();
    return text.substr(0, kLongestLine);
}

/// The text of `field` as a number that a pixel can have; false for none.
bool ParsePixel(std::string_view field, double& number) {
    constexpr double kBeyondAnyPixel = 1e15;
    using Limits = std::numeric_limits<std::int32_t>;  // of a control point's pixel
    const double whole = std::trunc(ParseDouble(field));
    if (!(std::fabs(whole) < kBeyondAnyPixel)) return false;
    number = std::clamp<double>(whole, Limits::min(), Limits::max());
    return true;
}

class Parser {
public:
    void Parse(std::string_view bytes);
    KapHeader header;

private:
    void ParseLine(std::string_view line);
    void ParseSize(std::string_view line);
    void ParseKeys(std::string_view line);
    void ParseKey(std::string_view key, std::string_view value);
    void ParsePoint(std::string_view line);

    int line_number_ = 0;
    std::string prefix_;  ///< of the last line that was no continuation
};

void Parser::Parse(std::string_view bytes) {
    while (!bytes.empty() && !header.ended) {
        ++line_number_;
        ParseLine(TakeLine(bytes));
    }
}

void Parser::ParseLine(std::string_view line) {
    header.ended = line.starts_with(kCtrlZ);
    if (header.ended || line.starts_with('!')) return;
    const bool goes_on = line.starts_with(kContinuation);
    if (!goes_on) prefix_ = line.substr(0, kPrefix);
    const auto is = [this](std::string_view name) { return StartsWith(prefix_, name); };
    if (!is("BSB") && !is("KNP") && !is("REF/")) return;
    std::string text = LineText(line);
    if (goes_on) text.replace(0, kPrefix, prefix_);
    if (is("BSB")) return ParseSize(text);
    if (is("KNP")) return ParseKeys(text);
    ParsePoint(text);
}

/// "RA=50,40" anywhere on the line, in capitals.
void Parser::ParseSize(std::string_view line) {
    constexpr std::string_view kKey = "RA=";
    const std::size_t at = line.find(kKey);
    if (at == std::string_view::npos) return;
    std::string_view rest = line.substr(at + kKey.size());
    header.width = ParseLong(rest);
    rest.remove_prefix(std::min(rest.find(','), rest.size()));
    std::string_view height;
    header.height = TakeField(rest, height) ? ParseLong(height) : 0;
    header.has_data = true;
    header.size_line = line_number_;
}

/// The two characters before an equals sign are a key.
void Parser::ParseKeys(std::string_view line) {
    constexpr std::size_t kKeyLength = 2;
    for (std::size_t at = line.find('=', kPrefix); at != std::string_view::npos;
         at = line.find('=', at + 1)) {
        const std::string_view rest = line.substr(at + 1);
        ParseKey(line.substr(at - kKeyLength, kKeyLength), rest.substr(0, rest.find(',')));
    }
}

void Parser::ParseKey(std::string_view key, std::string_view value) {
    const struct {
        const char* key;
        std::string* text;
    } texts[] = {{"GD", &header.datum}, {"PR", &header.projection}, {"UN", &header.units}};
    for (const auto& row : texts) {
        if (!StartsWith(key, row.key) || value.empty()) continue;
        *row.text = value;
        header.has_data = true;
        if (row.text == &header.datum) header.datum_line = line_number_;
    }
    if (StartsWith(key, "SK")) header.skew = ParseDouble(value);
    for (const char* number : {"DX", "DY", "SK", "PP"})
        header.has_data = header.has_data || StartsWith(key, number);
}

/// "REF/1,100,200,48.5,-123.25": name, column, row, latitude, longitude.
void Parser::ParsePoint(std::string_view line) {
    std::string_view rest = line.substr(std::min(kPrefix, line.size()));
    const BString name("Point " + std::string(rest.substr(0, rest.find(','))));
    rest.remove_prefix(std::min(rest.find(','), rest.size()));
    std::array<std::string_view, 4> fields;
    bool complete = true;
    for (std::string_view& field : fields)
        complete = complete && TakeField(rest, field) && field.find_first_not_of(" \t") != field.npos;
    double column = 0.0;
    double row = 0.0;
    complete = complete && ParsePixel(fields[0], column) && ParsePixel(fields[1], row);
    if (!complete) return header.incomplete_points.push_back(line_number_);
    header.dropped.Count(ParseDouble(fields[0]), ParseDouble(fields[1]), static_cast<long>(column),
                         static_cast<long>(row));
    if (header.points.empty()) header.first_point_line = line_number_;
    header.last_point_line = line_number_;
    header.points.emplace_back(static_cast<long>(column), static_cast<long>(row), ParseDouble(fields[3]),
                               ParseDouble(fields[2]), 0.0, name, true);
}

}  // namespace

KapHeader ParseKapHeader(std::string_view bytes) {
    Parser parser;
    parser.Parse(bytes);
    return std::move(parser.header);
}

}  // namespace MapAnchor
