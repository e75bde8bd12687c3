#include "sidecar/wld/WorldFile.h"

#include "common/scanning/Text.h"

#include "common/policy/DiagnosticIds.h"
#include "common/policy/ReadNotes.h"

#include <Tellurion/Numbers.h>

#include <string>
#include <string_view>

namespace MapAnchor {

AffineTerms WorldFile::ToAffine() const {
    return {line[0], line[2], line[4] - line[0] * 0.5, line[1], line[3], line[5] - line[3] * 0.5};
}

WorldFile WorldFile::FromAffine(const AffineTerms& t) {
    return {{t.a, t.d, t.b, t.e, t.a * 0.5 + t.c, t.e * 0.5 + t.f}, 6};
}

namespace {

/// What a line holds beside its number, in words; empty for a plain line. A comma or semicolon
/// at the end is common and harmless.
std::string FaultOfLine(std::string_view text) {
    double number = 0.0;
    if (!Tellurion::ScanDouble(text, number)) return "holds no number and counts as 0";
    while (!text.empty() && IsBlank(text.back()))
        text.remove_suffix(1);
    if (text.empty() || text == "," || text == ";") return {};
    const bool goes_on = text.size() > 1 && text[1] >= '0' && text[1] <= '9';
    if (text[0] == ',' && goes_on) return "has a decimal comma, behind which nothing is read";
    const bool is_exponent = (text[0] == 'D' || text[0] == 'd') &&
                             (goes_on || (text.size() > 1 && (text[1] == '-' || text[1] == '+')));
    if (is_exponent) return "has an exponent with the letter D, which is not read";
    return "holds more than a number";
}

/// Notes what the line holds beside a number; false for a plain line.
bool NoteFault(const Tellurion::BFile& file, int line, std::string_view text) {
    const std::string fault = FaultOfLine(text);
    if (fault.empty()) return false;
    ReadNotes::Current()->Add({.id = DiagnosticId::kWorldFileText,
                               .text = "line " + std::to_string(line) + " of the world file " + fault,
                               .file = file.GetPath(),
                               .line = line});
    return true;
}

}  // namespace

WorldFile ParseWorldFile(Tellurion::BFile& file) {
    WorldFile world_file;
    std::string_view text;
    bool listens = ReadNotes::Current() != nullptr;
    for (double& number : world_file.line) {
        if (!file.ReadLineBytes(text)) break;
        number = Tellurion::ParseDouble(text);
        ++world_file.lines_read;
        if (listens) listens = !NoteFault(file, world_file.lines_read, text);
    }
    return world_file;
}

Tellurion::BString FormatWorldFile(const WorldFile& world_file) {
    std::string text;
    for (const double number : world_file.line)
        text += Tellurion::PrintFixed(number, 12) + "\n";
    return text;
}

}  // namespace MapAnchor
