#include "commands/Convert.h"

#include "read/PdfWorkplace.h"

#include <MapAnchor/BGeoPDFPages.h>
#include <MapAnchor/BGeoPDFTraits.h>
#include <MapAnchor/BMapAnchor.h>
#include <Tellurion/Numbers.h>

#include <algorithm>
#include <cmath>
#include <system_error>

namespace Tool {

using MapAnchor::BDiagnostic;
using MapAnchor::BGeoPDFBox;
using MapAnchor::BGeoPDFPage;
using MapAnchor::BGeoPDFPages;
using MapAnchor::BGeoPDFTraits;
using MapAnchor::BMapAnchor;
using namespace Tellurion;

namespace {

/// The longest edge of a viewport in points; larger ones are written shrunk to it.
constexpr double kLongestEdge = 14400.0;
/// What control points rounded to whole pixels hold.
constexpr double kCloseInPixels = 0.5;

double Width(const BGeoPDFBox& box) {
    return box.Right - box.Left;
}

double Height(const BGeoPDFBox& box) {
    return box.Top - box.Bottom;
}

std::string SizeText(double width, double height) {
    return PrintShortest(width) + " by " + PrintShortest(height) + " points";
}

/// False, with a failure, for what is no PDF page that can be written.
bool IsWritablePage(const std::string& target, const BGeoPDFPage& page, Outcome& outcome) {
    const std::string file = "File <" + target + ">";
    if (page.Encrypted)
        outcome.Fail(ExitStatus::Refused, "BGeoReferenceNotSupportedException",
                     file + " is encrypted; it can be georeferenced without a password alone.");
    else if (!page.Loaded)
        outcome.Fail(ExitStatus::Error, "BFileAccessException",
                     file + " is no PDF that can be read: " + page.Fault.StdStr());
    return !outcome.failure;
}

/// The resolution at which a raster of that width fills the page.
void SetResolution(ConvertOptions& options, double dpi) {
    options.read.dpi = dpi;
    options.read.params.SetDouble(BMapAnchor::kValPDFResolution, dpi);
}

void SetSize(ConvertOptions& options, const BGeoPDFBox& box) {
    const double per_point = options.read.dpi / ReadOptions::kPointsPerInch;
    options.read.width = std::lround(Width(box) * per_point);
    options.read.height = std::lround(Height(box) * per_point);
}

/// The viewport that is written starts at the origin and is as large as the raster.
void WarnOfMisfit(const ConvertOptions& options, const BGeoPDFPage& page, Outcome& outcome) {
    const BGeoPDFBox& box = page.MediaBox;
    const double pixel = ReadOptions::kPointsPerInch / options.read.dpi;
    const double width = static_cast<double>(*options.read.width) * pixel;
    const double height = static_cast<double>(*options.read.height) * pixel;
    const double shrunk = std::min(1.0, kLongestEdge / std::max(width, height));
    if (std::fabs(width * shrunk - Width(box)) > pixel || std::fabs(height * shrunk - Height(box)) > pixel)
        outcome.Warn("the raster does not fill the page: it covers " +
                     SizeText(width * shrunk, height * shrunk) + " at " + PrintShortest(options.read.dpi) +
                     " dots per inch, the page has " + SizeText(Width(box), Height(box)));
    if (options.read.pdf_by_rules && (std::fabs(box.Left) > pixel || std::fabs(box.Bottom) > pixel))
        outcome.Warn("the page begins at " + PrintShortest(box.Left) + ", " + PrintShortest(box.Bottom) +
                     "; the raster is taken to begin at 0, 0");
    if (page.Rotate != 0)
        outcome.Warn("the page is shown turned by " + std::to_string(page.Rotate) +
                     " degrees; the reference lies in the page as it is unturned");
    if (!page.Maps.empty()) outcome.Warn("the reference that the page has already is replaced");
}

/// A remark that the library logs under an id has that in front.
void SplitId(Diagnostic& line) {
    const std::size_t end = line.text.find(": ");
    if (end == std::string::npos || line.text.compare(0, 4, "pdf-") != 0 ||
        line.text.find_first_not_of("abcdefghijklmnopqrstuvwxyz-") != end)
        return;
    line.id = line.text.substr(0, end);
    line.text.erase(0, end + 2);
}

/// The library's log, in words that mean something to the caller.
void TakeLog(const PdfWorkplace& place, LogCollector& log, Outcome& outcome) {
    Diagnostics lines;
    log.MoveTo(lines, false);
    for (Diagnostic& line : lines) {
        line.text = place.InWordsOfTarget(line.text);
        SplitId(line);
        if (!place.IsAboutLeftovers(line.text)) outcome.diagnostics.push_back(std::move(line));
    }
}

void ReadBack(const ConvertOptions& options, const PdfWorkplace& place, LogCollector& log, Outcome& outcome) {
    ReadOptions how;
    how.width = options.read.width;
    how.height = options.read.height;
    how.type = EReferenceType::GeoPDF;
    how.pdf_page = options.target_page;
    how.params.SetInteger(BMapAnchor::kValPDFPage, options.target_page);
    ReadResult back = ReadFile(place.File(), how, log);
    back.file = back.used_file = options.target;
    if (back.failure) {
        outcome.failure = back.failure;
        outcome.status = ExitStatus::Error;
        outcome.diagnostics.push_back({true, "the PDF that was written is not read back"});
    }
    outcome.saved = std::move(back);
}

void Verify(const ConvertOptions& options, const BGeoReference& reference, Outcome& outcome) {
    std::string fault;
    outcome.closeness = CompareAtCorners(reference, outcome.saved->reference, *options.read.width,
                                         *options.read.height, fault);
    if (!outcome.closeness)
        outcome.Warn("the distance at the corners cannot be told: " + fault);
    else if (outcome.closeness->pixels > kCloseInPixels)
        outcome.Warn("what is read back lies " + PrintFixed(outcome.closeness->pixels, 2) +
                     " pixels from the reference at the worst corner");
}

/// Why the library left the page alone without an exception.
std::string ReasonOfNothing(const BGeoReference& reference) {
    constexpr std::size_t kPointsThatSuffice = 4;
    return reference.PointPairVector.size() >= kPointsThatSuffice
               ? "Nothing was saved: a PDF needs a transform, or four control points that are enabled."
               : "Nothing was saved: the raster's corners have no longitude and latitude, or the raster is "
                 "too small to tell them apart.";
}

/// True when the library wrote the file; a warning of its own is no exception.
bool IsSaved(const ConvertOptions& options, const BGeoReference& reference, const PdfWorkplace& place,
             LogCollector& log, Outcome& outcome) {
    ConvertOptions at_work = options;
    at_work.target = place.File();
    at_work.to = EReferenceType::GeoPDF;
    try {
        CallSave(at_work, reference);
    } catch (...) {
        FailByCurrent(outcome);
        outcome.failure->detail = place.InWordsOfTarget(outcome.failure->detail);
        outcome.failure->message = place.InWordsOfTarget(outcome.failure->message);
    }
    TakeLog(place, log, outcome);
    if (!outcome.failure && !place.HasResult())
        outcome.Fail(ExitStatus::Error, "BGeoReferenceWriteException", ReasonOfNothing(reference));
    return !outcome.failure;
}

void WorkAt(PdfWorkplace& place, const ConvertOptions& options, const BGeoReference& reference,
            LogCollector& log, Outcome& outcome) {
    if (!IsSaved(options, reference, place, log, outcome)) return;
    if (options.verify || options.dry_run) ReadBack(options, place, log, outcome);
    if (outcome.failure) return;
    if (options.verify) Verify(options, reference, outcome);
    if (options.dry_run) return;
    if (options.backup && !KeepCopies(outcome)) return;
    for (const std::string& loss : place.ReplaceTarget())
        outcome.Warn(loss);
}

/// The page that is georeferenced, in points of 1/72 inch.
BGeoPDFPage TargetPage(const ConvertOptions& options, const BGeoPDFTraits& traits) {
    const BString target(options.target);
    // What our own reader does not open is for the parser, and so for the rules.
    if (options.read.pdf_by_rules || !traits.Known) return BGeoPDFPage::Describe(target);
    BParamList params;
    params.SetInteger(BMapAnchor::kValPDFPage, options.target_page);
    BGeoPDFPage page = BGeoPDFPages::Describe(target, &params).Pages.front().Page;
    page.Encrypted = page.Encrypted || traits.Encrypted;
    for (double* side :
         {&page.MediaBox.Left, &page.MediaBox.Bottom, &page.MediaBox.Right, &page.MediaBox.Top})
        *side *= page.UserUnit;
    return page;
}

/// Lets the library append where that is asked for, or the better way; true where it will.
bool ChooseUpdate(ConvertOptions& options, const BGeoPDFTraits& traits, Outcome& outcome) {
    if (options.read.pdf_by_rules && !options.incremental) return false;
    enum Wish { kNever, kAlways, kWhereNeeded };
    const bool chosen = !options.incremental && traits.WantsUpdate();
    options.read.params.SetInteger(BMapAnchor::kValPDFIncremental, options.incremental.value_or(false)
                                                                       ? kAlways
                                                                   : options.incremental ? kNever
                                                                                         : kWhereNeeded);
    options.read.params.SetInteger(BMapAnchor::kValPDFPage, options.target_page);
    if (chosen) {
        std::string reasons;
        for (const BDiagnostic& loss : traits.RewriteLosses())
            reasons += "; " + loss.GetText().StdStr();
        if (reasons.empty()) reasons = "; the file is large";
        outcome.diagnostics.push_back(
            {false, "the reference is appended to the file" + reasons, "pdf-appended", true});
    }
    return chosen || options.incremental.value_or(false);
}

/// Appends to the target itself: nothing but its end changes.
void AppendToTarget(const ConvertOptions& options, const BGeoReference& reference, LogCollector& log,
                    Outcome& outcome) {
    if (options.backup && !KeepCopies(outcome)) return;
    ConvertOptions by_type = options;
    by_type.to = EReferenceType::GeoPDF;
    try {
        CallSave(by_type, reference);
    } catch (...) {
        FailByCurrent(outcome);
    }
    Diagnostics lines;
    log.MoveTo(lines, false);
    for (Diagnostic& line : lines) {
        SplitId(line);
        outcome.diagnostics.push_back(std::move(line));
    }
}

}  // namespace

bool FitToPage(ConvertOptions& options, bool has_size, Outcome& outcome) {
    const BGeoPDFPage page = TargetPage(options, BGeoPDFTraits::Of(BString(options.target)));
    if (!IsWritablePage(options.target, page, outcome)) return false;
    const BGeoPDFBox& box = page.MediaBox;
    const bool has_extent = box.Present && Width(box) > 0.0 && Height(box) > 0.0;
    if (has_size && !has_extent) return true;
    if (!has_extent) {
        outcome.Fail(ExitStatus::Error, "BFileAccessException",
                     "The first page of <" + options.target +
                         "> has no media box of its own; --size WxH gives the raster's size.");
        return false;
    }
    if (!has_size)
        SetSize(options, box);
    else if (!options.read.params.HasProperty(BMapAnchor::kValPDFResolution))
        SetResolution(options,
                      static_cast<double>(*options.read.width) / Width(box) * ReadOptions::kPointsPerInch);
    WarnOfMisfit(options, page, outcome);
    return true;
}

void SavePdf(const ConvertOptions& given, const BGeoReference& reference, LogCollector& log,
             Outcome& outcome) {
    ConvertOptions options = given;
    const bool appends = ChooseUpdate(options, BGeoPDFTraits::Of(BString(options.target)), outcome);
    if (appends && !options.verify && !options.dry_run)
        return AppendToTarget(options, reference, log, outcome);
    try {
        PdfWorkplace place(options.target,
                           options.dry_run ? PdfWorkplace::Purpose::Rehearsal : PdfWorkplace::Purpose::Save);
        WorkAt(place, options, reference, log, outcome);
    } catch (const std::filesystem::filesystem_error& error) {
        outcome.Fail(ExitStatus::Error, "BFileAccessException",
                     "File <" + options.target + "> was not georeferenced: " + error.what());
    }
}

}  // namespace Tool
