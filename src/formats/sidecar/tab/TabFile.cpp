#include "sidecar/tab/TabFile.h"

#include "common/files/QuotedName.h"
#include "common/policy/ReadNotes.h"
#include "common/scanning/Text.h"
#include "common/scanning/TextLines.h"
#include "lookups/CoordSysLookups.h"
#include "sidecar/rsf/SplitTokens.h"

#include <Tellurion/BFileUtilities.h>
#include <Tellurion/BLogger.h>
#include <Tellurion/Charsets.h>
#include <Tellurion/Numbers.h>

#include <array>
#include <cstring>
#include <limits>
#include <string>

namespace MapAnchor {

using Tellurion::BFile;
using Tellurion::BLogger;
using Tellurion::BPointPair;
using Tellurion::BString;
using Tellurion::ELogSeverity;
using Tellurion::ParseDouble;
using Tellurion::ParseLong;
using Tellurion::PrintFixed;
using Tellurion::TextPieces;

const char kDefaultTabClause[] = "CoordSys Earth Projection 1, 0\nUnits \"Degree\"";

namespace {

constexpr const char* kWriteSource = "BRefTAB::Write";
constexpr std::size_t kMostTokens = 32;
/// Four delimiters and the word Label.
constexpr std::size_t kShortestPoint = 9;

/// World x and y, column and row, the word Label, the name. Cuts the line up.
void ParsePoint(std::string& line, TabFile& tab) {
    static constexpr Delimiters kDelimiters("( ,)");
    std::array<char*, kMostTokens> tokens;
    const std::size_t count = SplitTokens(line.data(), kDelimiters, tokens.data(), tokens.size());
    constexpr char kLabel[] = "label";
    if (count < 5 || CompareNoCase(tokens[4], kLabel, sizeof kLabel) != 0) return;
    const long column = ParseLong(tokens[2]);
    const long row = ParseLong(tokens[3]);
    if (ReadNotes::Current()) tab.dropped.Count(ParseDouble(tokens[2]), ParseDouble(tokens[3]), column, row);
    tab.points.emplace_back(column, row, ParseDouble(tokens[0]), ParseDouble(tokens[1]), 0.0,
                            count > 5 ? tokens[5] : "", true);
}

/// Characters that the charset lacks are no reason to lose the file.
std::string Encode(const BString& text) {
    bool lossy = false;
    std::string bytes = Tellurion::EncodeWindows1252(text, lossy);
    if (lossy)
        BLogger::Instance()->WriteLine(ELogSeverity::Error,
                                       "%s The text <%ls> has characters that WindowsLatin1 does not hold",
                                       kWriteSource, text);
    return bytes;
}

std::string EncodeQuoted(const BString& text) {
    return Encode(QuotedName(text, std::numeric_limits<std::size_t>::max(), kWriteSource));
}

void AppendPoint(std::string& text, const BPointPair& point) {
    text += "  (" + PrintFixed(point.World.x, 11) + ", " + PrintFixed(point.World.y, 11) + ") (";
    text += std::to_string(point.Column) + ", " + std::to_string(point.Row) + ") Label \"";
    text += EncodeQuoted(point.Name) + '"';
}

}  // namespace

TabFile ParseTab(BFile& file) {
    TabFile tab;
    TextLines lines(file);
    std::string_view line;
    std::string cut;
    const bool explains = ReadNotes::Explaining() != nullptr;
    for (long number = 1; lines.Next(line); ++number) {
        if (!tab.has_table_mark) tab.has_table_mark = ContainsInAnyCase(line, "!table");
        if (!tab.has_raster_mark) tab.has_raster_mark = line.find("RASTER") != std::string_view::npos;
        if (explains && tab.clause_line == 0 && ContainsInAnyCase(line, "coordsys")) tab.clause_line = number;
        if (line.size() < kShortestPoint) continue;
        cut.assign(line);
        const std::size_t before = tab.points.size();
        ParsePoint(cut, tab);
        if (tab.points.size() == before) continue;
        if (before == 0) tab.first_point_line = number;
        tab.last_point_line = number;
    }
    return tab;
}

void FormatTab(const std::vector<BPointPair>& points, const BString& image_name, TextPieces out) {
    out.Text() += "!table\n!version 300\n!charset WindowsLatin1\n\nDefinition Table\n  File \"";
    out.Text() += EncodeQuoted(Tellurion::BFileUtilities::GetFileName(image_name));
    out.Text() += "\"\n  Type \"RASTER\"\n";
    for (const BPointPair& point : points) {
        AppendPoint(out.Text(), point);
        out.Text() += &point == &points.back() ? "\n" : ",\n";
        out.PassOn();
    }
    out.Finish();
}

}  // namespace MapAnchor
