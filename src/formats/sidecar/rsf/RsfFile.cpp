#include "sidecar/rsf/RsfFile.h"

#include "common/files/QuotedName.h"
#include "common/scanning/RowScanner.h"
#include "common/scanning/TextLines.h"

#include <Tellurion/Numbers.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace MapAnchor {

using Tellurion::BFile;
using Tellurion::BPointPair;
using Tellurion::BString;
using Tellurion::PrintFixed;
using Tellurion::TextPieces;

namespace {

/// No well-known text is near this; what follows is not kept.
constexpr std::size_t kLongestWkt = std::size_t{1} << 20;
/// Room for as many rows is made at once; more grow with the rows that are really there,
/// since neither the header's count nor the length of a sparse file costs its writer anything.
constexpr std::int32_t kRowsAhead = 1024;

struct RsfRow {
    std::string_view name;
    std::int32_t row = 0;
    std::int32_t column = 0;
    std::int32_t third = 0;  // a third pixel coordinate that means nothing
    double y = 0.0;
    double x = 0.0;
    double z = 0.0;
    std::int32_t enabled = 0;
    double exact_row = 0.0;  // as the file states it
    double exact_column = 0.0;
};

/// In quotes, or a word. False for a quote without its end.
bool TakeName(std::string_view& text, std::string_view& name) {
    RowScanner scanner(text);
    if (!scanner.Literal("\"")) {
        scanner.SkipBlanks();
        text = scanner.Rest();
        const auto end = std::min(text.find_first_of(" \t\n\v\f\r"), text.size());
        name = text.substr(0, end);
        text.remove_prefix(end);
        return true;
    }
    text = scanner.Rest();
    std::size_t end = text.substr(0, RsfFile::kLongestName).find('"');
    if (end == std::string_view::npos) end = RsfFile::kLongestName;
    if (end >= text.size()) return false;
    // A half character would make the whole file unreadable when it is saved.
    name = text.substr(0, EndOfCharacter(text, end));
    text.remove_prefix(end + 1);
    return true;
}

bool ScanWorld(RowScanner& scanner, RsfRow& row) {
    return scanner.Real(row.y) && scanner.Real(row.x) && scanner.Real(row.z) && scanner.Whole(row.enabled);
}

bool ScanWholePixels(RowScanner scanner, RsfRow& row) {
    return scanner.Whole(row.row) && scanner.Whole(row.column) && scanner.Whole(row.third) &&
           ScanWorld(scanner, row);
}

bool ScanCutPixel(RowScanner& scanner, std::int32_t& pixel, double& value) {
    using Limits = std::numeric_limits<std::int32_t>;
    if (!scanner.Real(value)) return false;
    const double cut = std::isnan(value) ? 0.0 : std::trunc(value);
    pixel = static_cast<std::int32_t>(std::clamp<double>(cut, Limits::min(), Limits::max()));
    return true;
}

bool ScanFractionalPixels(RowScanner scanner, RsfRow& row) {
    double third = 0.0;
    return ScanCutPixel(scanner, row.row, row.exact_row) &&
           ScanCutPixel(scanner, row.column, row.exact_column) && ScanCutPixel(scanner, row.third, third) &&
           ScanWorld(scanner, row);
}

bool ParseRow(std::string_view text, RsfPixels pixels, RsfFile& rsf) {
    RsfRow row;
    if (!TakeName(text, row.name)) return false;
    const RowScanner rest(text);
    const bool is_whole = ScanWholePixels(rest, row);
    if (!is_whole && (pixels == RsfPixels::Whole || !ScanFractionalPixels(rest, row))) return false;
    RowScanner stated(rest);  // a whole pixel beyond 32 bits was moved
    if (is_whole && stated.Real(row.exact_row)) stated.Real(row.exact_column);
    rsf.dropped.Count(row.exact_column, row.exact_row, row.column, row.row);
    rsf.points.emplace_back(row.column, row.row, row.x, row.y, row.z, BString(std::string(row.name)),
                            row.enabled != 0);
    return true;
}

void ParseHeader(BFile& file, RsfFile& rsf) {
    BString line;
    if (!file.ReadLine(line, 0) || line.GetLength() < 2) {
        rsf.fault = RsfFile::Fault::NoHeader;
        return;
    }
    const std::string text = line.Ascii();
    RowScanner scanner(text);
    if (scanner.Whole(rsf.version) && scanner.Whole(rsf.count)) return;
    rsf.fault = RsfFile::Fault::BadHeader;
    rsf.faulty_line = line;
}

/// Trusts the count of the header no further than there are lines.
void ParseRows(BFile& file, RsfPixels pixels, RsfFile& rsf) {
    TextLines lines(file);
    std::string_view line;
    rsf.points.reserve(static_cast<std::size_t>(std::clamp(rsf.count, 0, kRowsAhead)));
    for (std::int32_t row = 0; row < rsf.count; ++row) {
        if (!lines.Next(line)) {
            rsf.fault = RsfFile::Fault::NoRow;
        } else if (!line.starts_with('#') && !ParseRow(line, pixels, rsf)) {
            rsf.fault = RsfFile::Fault::BadRow;
            rsf.faulty_line = BString(std::string(line));
        }
        if (rsf.fault == RsfFile::Fault::None) continue;
        rsf.faulty_row = row;
        return;
    }
}

void ParseBlock(BFile& file, RsfFile& rsf) {
    BString line;
    while (rsf.block.size() < RsfFile::kBlockLines && file.ReadLine(line, 0))
        rsf.block.push_back(line);
    if (rsf.version != 4 || !rsf.HasBlock() || !file.ReadLine(line, 0)) return;
    rsf.has_mode = true;
    while (rsf.wkt.GetLength() < kLongestWkt && file.ReadLine(line, 0))
        rsf.wkt += line;
}

void AppendRow(std::string& text, const BPointPair& point) {
    text += '"';
    text += QuotedName(point.Name, RsfFile::kLongestName, "BRefRSF::Write").StdStr();
    text += "\" " + std::to_string(point.Row) + ' ' + std::to_string(point.Column) + " 0 ";
    text += PrintFixed(point.World.y, 15) + ' ' + PrintFixed(point.World.x, 15) + ' ';
    text += PrintFixed(point.World.z, 5) + (point.Enabled ? " 1\n" : " 0\n");
}

}  // namespace

RsfFile ParseRsf(BFile& file, RsfPixels pixels) {
    RsfFile rsf;
    ParseHeader(file, rsf);
    if (rsf.fault == RsfFile::Fault::None) ParseRows(file, pixels, rsf);
    if (rsf.fault == RsfFile::Fault::None && rsf.version > 2 && rsf.HoldsItsCount()) ParseBlock(file, rsf);
    return rsf;
}

void FormatRsfPoints(const std::vector<BPointPair>& points, TextPieces out) {
    out.Text() += "4 " + std::to_string(points.size()) + '\n';
    for (const BPointPair& point : points) {
        AppendRow(out.Text(), point);
        out.PassOn();
    }
    out.Finish();
}

BString FormatRsfBlock(const BString& wkt) {
    constexpr const char* kBlock = "NONE\nNONE\nNONE\nNONE\n0";
    return wkt.IsEmpty() ? BString(kBlock) : BString(kBlock) + "\n" + wkt;
}

}  // namespace MapAnchor
