#include "sidecar/ers/ErsHeader.h"

#include "common/files/QuotedName.h"
#include "common/scanning/RowScanner.h"
#include "common/scanning/TextLines.h"
#include "sidecar/rsf/SplitTokens.h"

#include <Tellurion/Numbers.h>

#include <array>
#include <cmath>
#include <limits>

namespace MapAnchor {

using Tellurion::BFile;
using Tellurion::BString;
using Tellurion::PrintFixed;

namespace {

enum class Form { Mark, Real, Whole, Name };

/// What is searched in a line, and how it is scanned from there. The first rule that
/// matches decides.
struct TagRule {
    const char* tag;
    Form form;
    std::optional<double> ErsHeader::*number = nullptr;
    BString ErsHeader::*name = nullptr;
    /// The name that the scan wants; null for the tag's own.
    const char* scanned = nullptr;
    bool faulty = true;  ///< a scan that fails is a fault, and not just the end
};

constexpr TagRule kRules[] = {
    {"RasterInfo End", Form::Mark},
    {"Xdimension", Form::Real, &ErsHeader::x_dimension},
    {"Ydimension", Form::Real, &ErsHeader::y_dimension},
    {"NrOfLines", Form::Whole},
    {"NrOfCellsPerLine", Form::Whole},
    {"Eastings", Form::Real, &ErsHeader::eastings},
    {"Northings", Form::Real, &ErsHeader::northings},
    // Scanned under the other's name, so that this tag always ends the reading: a
    // header that has it inside RasterInfo is refused. Hosts rely on it.
    {"RegistrationCellX", Form::Real, &ErsHeader::cell_x, nullptr, "RegistrationCellY", false},
    {"RegistrationCellY", Form::Real, &ErsHeader::cell_y, nullptr, nullptr, false},
    {"Datum", Form::Name, nullptr, &ErsHeader::datum},
    {"Projection", Form::Name, nullptr, &ErsHeader::projection},
};

bool ScanNumber(std::string_view text, const TagRule& rule, ErsHeader& header) {
    RowScanner scanner(text);
    if (!scanner.Literal(rule.scanned ? rule.scanned : rule.tag) || !scanner.Literal("=")) return false;
    std::int32_t whole = 0;
    if (rule.form == Form::Whole) {
        if (!scanner.Whole(whole)) return false;
        (std::string_view(rule.tag) == "NrOfLines" ? header.rows : header.columns) = whole;
        return true;
    }
    double value = 0.0;
    if (!scanner.Real(value)) return false;
    header.*rule.number = value;
    return true;
}

void ReadName(std::string_view text, const TagRule& rule, ErsHeader& header) {
    std::string cut(text);
    std::array<char*, 32> tokens{};
    static constexpr Delimiters kDelimiters("( ,)=");
    if (SplitTokens(cut.data(), kDelimiters, tokens.data(), tokens.size()) < 2) {
        if (!header.empty_tag) header.empty_tag = rule.tag;
        return;
    }
    header.*rule.name = BString(tokens[1]).Trim();
}

void NoteRotation(std::string_view line, ErsHeader& header) {
    const std::size_t at = line.find("Rotation");
    const std::size_t equals = line.find('=', at);
    if (at == std::string_view::npos || equals == std::string_view::npos) return;
    header.rotation = BString(std::string(line.substr(equals + 1))).Trim();
}

/// False when reading ends with this line.
bool ReadTag(std::string_view line, long number, ErsHeader& header) {
    for (const TagRule& rule : kRules) {
        const std::size_t at = line.find(rule.tag);
        if (at == std::string_view::npos) continue;
        if (rule.form == Form::Mark) {
            header.has_raster_info_end = true;
        } else if (rule.form == Form::Name) {
            ReadName(line.substr(at), rule, header);
        } else if (!ScanNumber(line.substr(at), rule, header)) {
            if (rule.faulty) header.faulty_tag = rule.tag;
            return false;
        }
        header.lines.emplace_back(rule.tag, number);
        return true;
    }
    NoteRotation(line, header);
    return true;
}

std::string Quoted(const BString& text) {
    return '"' + text.StdStr() + "\"\n";
}

/// A line end in a name would make lines of the header of what follows it.
std::string OnOneLine(const BString& name) {
    const bool breaks =
        name.GetUnits().find_first_of(std::u16string_view(u"\n\r\0", 3)) != std::u16string::npos;
    return Quoted(breaks ? QuotedName(name, std::numeric_limits<std::size_t>::max(), "BRefERS::Write")
                         : name);
}

std::string NameOrRaw(const BString& name) {
    return name.IsEmpty() ? "\"RAW\"\n" : Quoted(name);
}

std::string Row(long row, long column) {
    return "\t\t\t\t" + std::to_string(row) + '\t' + std::to_string(column) + '\n';
}

std::string DatasetPart(const ErsContent& c) {
    return "DatasetHeader Begin\n\tVersion\t\t= \"6.0\"\n\tName\t\t= " + OnOneLine(c.name) +
           "\tLastUpdated\t= " + c.time_stamp + "\tDataFile\t= " + OnOneLine(c.image_name) +
           "\tDataSetType\t= Translated\n\tDataType\t= Raster\n\tByteOrder\t= LSBFirst\n"
           "\tCoordinateSpace Begin\n\t\tDatum\t\t= " +
           NameOrRaw(c.datum) + "\t\tProjection\t= " + NameOrRaw(c.projection) +
           "\t\tCoordinateType\t= EN\n\t\tRotation\t= 0:0:0.0\n\tCoordinateSpace End\n";
}

std::string RasterPart(const ErsContent& c) {
    return "\tRasterInfo Begin\n\t\tCellType\t= Unsigned8BitInteger\n\t\tCellInfo Begin\n"
           "\t\t\tXdimension\t= " +
           PrintFixed(c.terms.a / c.units_per_metre, 18) +
           "\n\t\t\tYdimension\t= " + PrintFixed(std::fabs(c.terms.e) / c.units_per_metre, 18) +
           "\n\t\tCellInfo End\n\t\tNrOfLines\t= " + std::to_string(c.height) +
           "\n\t\tNrOfCellsPerLine\t= " + std::to_string(c.width) +
           "\n\t\tRegistrationCoord Begin\n\t\t\tEastings\t= " + PrintFixed(c.terms.c, 12) +
           "\n\t\t\tNorthings\t= " + PrintFixed(c.terms.f, 12) + "\n\t\tRegistrationCoord End\n";
}

/// Three bands of one byte, whatever the raster has.
std::string BandPart() {
    std::string text = "\t\tNrOfBands\t= 3\n";
    for (const char* band : {"Red", "Green", "Blue"})
        text += "\t\tBandId Begin\n\t\t\tValue\t\t= \"" + std::string(band) + "\"\n\t\tBandId End\n";
    return text;
}

std::string RegionPart(const ErsContent& c) {
    return "\t\tRegionInfo Begin\n\t\t\tType\t\t= Polygon\n\t\t\tRegionName\t= \"All\"\n"
           "\t\t\tSubRegion\t= {\n" +
           Row(0, 0) + Row(0, c.width) +
           Row(c.height, c.height) +  // the height twice: the header has always said so
           Row(c.height, 0) + "\t\t\t}\n\t\tRegionInfo End\n\tRasterInfo End\nDatasetHeader End\n";
}

}  // namespace

long ErsHeader::LineOf(const char* tag) const {
    long found = 0;
    for (const auto& [name, line] : lines)
        if (std::string_view(name) == tag) found = line;
    return found;
}

AffineTerms ErsHeader::ToAffine(double units_per_metre) const {
    const double x = *x_dimension * units_per_metre;
    const double y = *y_dimension * units_per_metre;
    return {x, 0.0, *eastings - cell_x.value_or(0.0) * x, 0.0, y, *northings - cell_y.value_or(0.0) * y};
}

ErsHeader ParseErs(BFile& file) {
    ErsHeader header;
    TextLines lines(file);
    std::string_view line;
    long number = 0;
    while (lines.Next(line) && ReadTag(line, ++number, header)) {
    }
    if (header.y_dimension) header.y_dimension = -std::fabs(*header.y_dimension);
    return header;
}

BString FormatErs(const ErsContent& content) {
    return BString(DatasetPart(content) + RasterPart(content) + BandPart() + RegionPart(content));
}

}  // namespace MapAnchor
