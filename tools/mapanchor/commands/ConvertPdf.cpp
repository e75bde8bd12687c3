#include "commands/Convert.h"

#include "read/PdfWorkplace.h"
#include "read/RemarkIds.h"

#include <MapAnchor/BGeoPDFPages.h>
#include <MapAnchor/BGeoPDFTraits.h>
#include <MapAnchor/BMapAnchor.h>
#include <Tellurion/Numbers.h>

#include <algorithm>
#include <system_error>

namespace Tool {

using MapAnchor::BDiagnostic;
using MapAnchor::BGeoPDFBox;
using MapAnchor::BGeoPDFPage;
using MapAnchor::BGeoPDFPages;
using MapAnchor::BGeoPDFTraits;
using MapAnchor::BMapAnchor;
using MapAnchor::BSaving;
using MapAnchor::BSavingOptions;
using namespace Tellurion;

namespace {

double Width(const BGeoPDFBox& box) {
    return box.Right - box.Left;
}

double Height(const BGeoPDFBox& box) {
    return box.Top - box.Bottom;
}

/// False, with a failure, for what is no PDF page that can be written.
bool IsWritablePage(const std::string& target, const BGeoPDFPage& page, Outcome& outcome) {
    const std::string file = "File <" + target + ">";
    if (page.Encrypted)
        outcome.Fail(ExitStatus::Refused, FailureTypes::kNotSupported,
                     file + " is encrypted; it can be georeferenced without a password alone.");
    else if (!page.Loaded)
        outcome.Fail(ExitStatus::Error, FailureTypes::kFileAccess,
                     file + " is no PDF that can be read: " + page.Fault.StdStr());
    return !outcome.failure;
}

/// The library's log, in words that mean something to the caller.
void TakeLog(const PdfWorkplace& place, LogCollector& log, Outcome& outcome) {
    Diagnostics lines;
    log.MoveTo(lines, nullptr);
    for (Diagnostic& line : lines) {
        line.text = place.InWordsOfTarget(line.text);
        if (!place.IsAboutLeftovers(line.text)) outcome.diagnostics.push_back(std::move(line));
    }
}

void ReadBack(const ConvertOptions& options, const std::string& file, LogCollector& log, Outcome& outcome) {
    ReadOptions how;
    how.width = options.read.width;
    how.height = options.read.height;
    how.type = EReferenceType::GeoPDF;
    how.pdf_page = options.target_page;
    how.params.SetInteger(BMapAnchor::kValPDFPage, options.target_page);
    if (options.add_map) how.params.SetString(BMapAnchor::kValPDFMap, "last");
    ReadResult back = ReadFile(file, how, log);
    back.file = back.used_file = options.target;
    if (back.failure) {
        outcome.failure = back.failure;
        outcome.status = ExitStatus::Error;
        outcome.diagnostics.push_back({true, "the PDF that was written is not read back"});
    }
    outcome.saved = std::move(back);
}

BSavingOptions SavingOptionsAt(const ConvertOptions& options) {
    BSavingOptions saving = SavingOptionsOf(options);
    saving.SetType(EReferenceType::GeoPDF);
    return saving;
}

/// What a save remarks beyond the losses, which were printed before it.
void AddNewRemarks(const BSaving& saved, Outcome& outcome) {
    const auto& remarks = saved.GetDiagnostics();
    const auto known = static_cast<std::ptrdiff_t>(std::min(outcome.losses, remarks.size()));
    AddRemarks({remarks.begin() + known, remarks.end()}, outcome.diagnostics);
}

void AddInWordsOfTarget(const std::vector<BDiagnostic>& remarks, const PdfWorkplace& place,
                        Outcome& outcome) {
    Diagnostics lines;
    AddRemarks(remarks, lines);
    for (Diagnostic& line : lines) {
        line.text = place.InWordsOfTarget(line.text);
        line.file = place.InWordsOfTarget(line.file);
        if (!place.IsAboutLeftovers(line.text)) outcome.diagnostics.push_back(std::move(line));
    }
}

void Verify(const ConvertOptions& options, const BGeoReference& reference, const PdfWorkplace& place,
            Outcome& outcome) {
    outcome.proof = BSaving::Verify(BString(place.File()), reference, SavingOptionsAt(options));
    AddInWordsOfTarget(outcome.proof->GetDiagnostics(), place, outcome);
    FailWhenInexact(options, outcome);
}

/// Why the library left the page alone without an exception.
std::string ReasonOfNothing(const BGeoReference& reference) {
    constexpr std::size_t kPointsThatSuffice = 4;
    return reference.PointPairVector.size() >= kPointsThatSuffice
               ? "Nothing was saved: a PDF needs a transform, or four control points that are enabled."
               : "Nothing was saved: the raster's corners have no longitude and latitude, or the raster is "
                 "too small to distinguish them.";
}

/// True when the library wrote the file; a warning of its own is no exception.
bool IsSaved(const ConvertOptions& options, const BGeoReference& reference, const PdfWorkplace& place,
             LogCollector& log, Outcome& outcome) {
    BSavingOptions saving = SavingOptionsAt(options);
    saving.SetVerifies(false);
    saving.SetRequiresExact(false);
    try {
        const BSaving saved = BSaving::Of(BString(place.File()), reference, saving);
        const auto& remarks = saved.GetDiagnostics();
        AddInWordsOfTarget(
            {remarks.begin() + static_cast<std::ptrdiff_t>(std::min(outcome.losses, remarks.size())),
             remarks.end()},
            place, outcome);
    } catch (...) {
        FailByCurrent(outcome);
        outcome.failure->detail = place.InWordsOfTarget(outcome.failure->detail);
        outcome.failure->message = place.InWordsOfTarget(outcome.failure->message);
    }
    TakeLog(place, log, outcome);
    if (!outcome.failure && !place.HasResult())
        outcome.Fail(ExitStatus::Error, FailureTypes::kWrite, ReasonOfNothing(reference));
    return !outcome.failure;
}

void WorkAt(PdfWorkplace& place, const ConvertOptions& options, const BGeoReference& reference,
            LogCollector& log, Outcome& outcome) {
    if (!IsSaved(options, reference, place, log, outcome)) return;
    if (options.common.json || options.dry_run) ReadBack(options, place.File(), log, outcome);
    if (outcome.failure) return;
    if (!options.no_verify || options.require_exact) Verify(options, reference, place, outcome);
    if (outcome.failure || options.dry_run) return;
    if (options.backup && !KeepCopies(outcome)) return;
    for (const std::string& loss : place.ReplaceTarget())
        outcome.Warn(loss);
}

/// The page that is georeferenced, in points of 1/72 inch.
BGeoPDFPage TargetPage(const ConvertOptions& options, const BGeoPDFTraits& traits) {
    const BString target(options.target);
    if (options.read.pdf_by_rules) return BGeoPDFPage::Describe(target);
    return traits.DescribeTarget(target, options.target_page);
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
    if (chosen) {
        std::string reasons;
        for (const BDiagnostic& loss : traits.RewriteLosses())
            reasons += "; " + loss.GetText().StdStr();
        if (traits.Tagged) reasons += "; the file has a logical structure";
        if (reasons.empty()) reasons = "; the file is large";
        outcome.diagnostics.push_back(
            {false, "the reference is appended to the file" + reasons, "pdf-appended", true});
    }
    return chosen || options.incremental.value_or(false);
}

/// Appends to the target itself: only its end changes.
void AppendToTarget(const ConvertOptions& options, const BGeoReference& reference, LogCollector& log,
                    Outcome& outcome) {
    if (options.backup && !KeepCopies(outcome)) return;
    try {
        const BSaving saved = BSaving::Of(BString(options.target), reference, SavingOptionsAt(options));
        AddNewRemarks(saved, outcome);
        if (!options.no_verify || options.require_exact) {
            outcome.proof = saved.GetProof();
            FailWhenInexact(options, outcome);
        }
    } catch (...) {
        FailByCurrent(outcome);
    }
    log.MoveTo(outcome.diagnostics, outcome.failure ? &*outcome.failure : nullptr);
    if (!outcome.failure && options.common.json) ReadBack(options, options.target, log, outcome);
}

}  // namespace

bool FitToPage(ConvertOptions& options, Outcome& outcome) {
    constexpr int kMediaBox = 5;
    SetPdfTarget(options);
    const BGeoPDFPage page = TargetPage(options, BGeoPDFTraits::Of(BString(options.target)));
    if (!IsWritablePage(options.target, page, outcome)) return false;
    if (options.read.width) return true;
    const BGeoPDFBox box = page.BoxForCropType(options.read.pdf_box.value_or(kMediaBox));
    long width = 0;
    long height = 0;
    if (Width(box) <= 0.0 || Height(box) <= 0.0 || !box.ToPixels(options.read.dpi, width, height)) {
        outcome.Fail(ExitStatus::Error, FailureTypes::kFileAccess,
                     "The page of <" + options.target +
                         "> has no box that makes a raster at this resolution; --size WxH gives its size.");
        return false;
    }
    options.read.width = width;
    options.read.height = height;
    if (options.read.params.HasProperty(BMapAnchor::kValPDFResolution)) return true;
    options.read.params.SetDouble(BMapAnchor::kValPDFResolution, options.read.dpi);
    const std::string size = std::to_string(*options.read.width) + "x" + std::to_string(*options.read.height);
    if (options.require_exact) {
        outcome.Fail(
            ExitStatus::Error, FailureTypes::kParameters,
            "The raster's size is not known, so that the save cannot be exact: --size WxH, or --dpi N "
            "for a raster that fills the page.");
        return false;
    }
    outcome.diagnostics.push_back({.text = "the raster's size is not known: the page at 72 dots per inch, " +
                                           size + " pixels, is assumed; --size WxH or --dpi N corrects it",
                                   .id = RemarkId::kSizeAssumed});
    return true;
}

void SavePdf(const ConvertOptions& given, const BGeoReference& reference, LogCollector& log,
             Outcome& outcome) {
    ConvertOptions options = given;
    const bool appends = ChooseUpdate(options, BGeoPDFTraits::Of(BString(options.target)), outcome);
    if (appends && !options.dry_run) return AppendToTarget(options, reference, log, outcome);
    try {
        PdfWorkplace place(options.target,
                           options.dry_run ? PdfWorkplace::Purpose::Rehearsal : PdfWorkplace::Purpose::Save);
        WorkAt(place, options, reference, log, outcome);
    } catch (const std::filesystem::filesystem_error& error) {
        outcome.Fail(ExitStatus::Error, FailureTypes::kFileAccess,
                     "File <" + options.target + "> was not georeferenced: " + error.what());
    }
}

}  // namespace Tool
