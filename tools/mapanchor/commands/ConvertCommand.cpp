#include "commands/Commands.h"
#include "commands/Convert.h"
#include "read/ImageName.h"
#include "read/Systems.h"
#include "render/JsonRenderer.h"
#include "render/TextRenderer.h"
#include "terminal/TargetFile.h"

#include <MapAnchor/BControlPointFile.h>
#include <MapAnchor/BMapAnchor.h>
#include <MapAnchor/BReferenceFormats.h>
#include <Tellurion/BException.h>
#include <Tellurion/BFileUtilities.h>
#include <Tellurion/Numbers.h>
#include <Tellurion/Printable.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <limits>
#include <memory>
#include <stdexcept>

namespace Tool {

namespace {

using namespace Tellurion;
using MapAnchor::BControlPointFile;
using MapAnchor::BMapAnchor;
using MapAnchor::BReferenceFormat;
using MapAnchor::BReferenceFormats;
using MapAnchor::BSaving;
using MapAnchor::BSavingProof;

constexpr const char* kDescription =
    "Convert georeferencing to the kind that the target's extension names\n\n"
    "Examples:\n"
    "  mapanchor convert map.tfw copy.jgw\n"
    "  mapanchor convert --dry-run map.tfw other.wld\n"
    "  mapanchor convert --overwrite map.tfw map.tif\n"
    "  mapanchor convert --overwrite --backup --size 3000x1500 map.tfw map.pdf\n"
    "  mapanchor convert --overwrite --incremental map.tfw signed.pdf\n"
    "  mapanchor convert --to wld --overwrite map.pgw map.txt";

Plan MakePlan(const ConvertOptions& options, const BGeoReference& reference) {
    Plan plan;
    const BString extension = BFileUtilities::GetExtension(BString(options.target)).ToLower();
    const auto holds = [&extension](const std::vector<BString>& extensions) {
        return std::find(extensions.begin(), extensions.end(), extension) != extensions.end();
    };
    for (const BReferenceFormat& format : BReferenceFormats::List())
        if (options.to ? format.HasType() && format.GetType() == *options.to
                       : holds(format.GetSaveExtensions()) || format.IsNamedByType(BString(options.target)))
            plan.format = format;
    plan.files.push_back(options.target);
    plan.writes_prj = !options.to && plan.Is(EReferenceType::WLD) && reference.HasCoordSys();
    if (plan.writes_prj)
        plan.files.push_back(BFileUtilities::ChangeExtension(BString(options.target), "prj").StdStr());
    return plan;
}

/// True when no file in the way of the plan prevents it.
bool MayWrite(const ConvertOptions& options, const std::string& used_file, Outcome& outcome) {
    for (const std::string& file : outcome.plan.files) {
        if (IsSameFile(options.source, file) || IsSameFile(used_file, file)) {
            outcome.Fail(ExitStatus::Error, FailureTypes::kFileAccess,
                         "Source and target are the same file <" + file + ">.");
            return false;
        }
        if (options.overwrite || !BFileUtilities::Exists(BString(file))) continue;
        outcome.Fail(ExitStatus::Error, FailureTypes::kFileAccess,
                     outcome.plan.IsInPlace()
                         ? "File <" + file + "> exists; --overwrite georeferences it in place."
                         : ExistsText(file));
        return false;
    }
    if (!outcome.plan.IsInPlace() || BFileUtilities::Exists(BString(options.target))) return true;
    outcome.Fail(ExitStatus::Error, FailureTypes::kFileAccess,
                 "File <" + options.target + "> does NOT exist; a reference is saved into a " +
                     (outcome.plan.IsPdf() ? "PDF" : "raster") + " that is there.");
    return false;
}

std::string FreeName(const std::string& stem) {
    std::string name = stem;
    for (int i = 1; BFileUtilities::Exists(BString(name)); ++i)
        name = stem + "." + std::to_string(i);
    return name;
}

ExitStatus StatusOf(const Failure& failure) {
    return failure.kind == FailureKind::Unsupported ? ExitStatus::Refused : ExitStatus::Error;
}

}  // namespace

MapAnchor::BSavingOptions SavingOptionsOf(const ConvertOptions& options) {
    constexpr double kAnyMetres = std::numeric_limits<double>::infinity();
    MapAnchor::BSavingOptions saving;
    if (options.to) saving.SetType(*options.to);
    saving.SetFlags(options.read.flags | BMapAnchor::kStrictTransform);
    saving.SetSize(options.read.width.value_or(0), options.read.height.value_or(0));
    saving.SetImageName(BString(options.image));
    saving.SetParams(options.read.params);
    saving.SetControlPoints(options.points);
    saving.SetOverwrites(options.overwrite);
    saving.SetSyncs(!options.no_sync);
    saving.SetVerifies(!options.no_verify);
    saving.SetRequiresExact(options.require_exact);
    if (options.tolerance) saving.SetTolerance(*options.tolerance, kAnyMetres);
    return saving;
}

bool FailWhenInexact(const ConvertOptions& options, Outcome& outcome) {
    if (!options.require_exact || outcome.proof->IsExact()) return false;
    outcome.Fail(ExitStatus::Error, FailureTypes::kWrite,
                 "The save is not exact and was taken back; <" + options.target +
                     "> is what it was: " + outcome.proof->GetText().StdStr() + ".");
    return true;
}

void FailByCurrent(Outcome& outcome) {
    outcome.failure = CurrentFailure();
    outcome.status = StatusOf(*outcome.failure);
}

bool KeepCopies(Outcome& outcome) {
    for (const std::string& file : outcome.plan.files) {
        if (!BFileUtilities::Exists(BString(file))) continue;
        const std::string copy = FreeName(file + ".bak");
        std::error_code error;
        if (!std::filesystem::copy_file(file, copy, error)) {
            outcome.Fail(ExitStatus::Error, FailureTypes::kFileAccess,
                         "No copy <" + copy + "> can be kept: " + error.message() + ".");
            std::filesystem::remove(copy, error);
            return false;
        }
        outcome.kept.push_back(copy);
    }
    return true;
}

namespace {

/// The targets, each made sure of before the library writes it; empty, with a failure, when that
/// cannot be. A raster is written by the library alone.
std::vector<ReservedTarget> Reserve(const ConvertOptions& options, Outcome& outcome) {
    std::vector<ReservedTarget> reserved;
    if (outcome.plan.IsInPlace()) return reserved;
    try {
        for (const std::string& file : outcome.plan.files)
            reserved.emplace_back(file, options.overwrite);
    } catch (const std::runtime_error& error) {
        outcome.Fail(ExitStatus::Error, FailureTypes::kFileAccess, error.what());
        reserved.clear();
    }
    return reserved;
}

void RemoveFiles(const std::vector<std::string>& files) {
    std::error_code ignored;
    for (const std::string& file : files)
        std::filesystem::remove(file, ignored);
}

bool IsEmptyFile(const std::string& file) {
    std::error_code error;
    return std::filesystem::is_regular_file(file, error) && std::filesystem::file_size(file, error) == 0;
}

/// A file that the failed save made is no reference: away with it. One that was there
/// before may have been cut; that cannot be undone, so it is said. A raster keeps its
/// content.
void CleanUp(const std::string& target, bool existed, Outcome& outcome) {
    std::error_code error;
    if (outcome.plan.IsInPlace()) return;
    if (existed)
        outcome.diagnostics.push_back({true, "the older content of <" + target + "> may be lost"});
    else
        std::filesystem::remove(target, error);
}

void Save(const ConvertOptions& options, const BGeoReference& reference, Outcome& outcome) {
    const std::vector<ReservedTarget> reserved = Reserve(options, outcome);
    if (outcome.failure) return;
    const bool existed = reserved.empty() || !reserved.front().IsNew();
    const std::size_t known = outcome.losses;
    try {
        const BSaving saving = BSaving::Of(BString(options.target), reference, SavingOptionsOf(options));
        const auto& remarks = saving.GetDiagnostics();
        AddRemarks(
            {remarks.begin() + static_cast<std::ptrdiff_t>(std::min(known, remarks.size())), remarks.end()},
            outcome.diagnostics);
        if (!options.no_verify || options.require_exact) outcome.proof = saving.GetProof();
    } catch (...) {
        FailByCurrent(outcome);
    }
    if (!outcome.failure && outcome.proof && FailWhenInexact(options, outcome) && !existed)
        RemoveFiles(outcome.plan.files);
    if (!outcome.failure && IsEmptyFile(options.target))
        outcome.Fail(ExitStatus::Error, FailureTypes::kWrite,
                     "Nothing was saved: the reference has no part that this kind of file holds.");
    if (!outcome.failure) return;
    if (outcome.status != ExitStatus::Refused) CleanUp(options.target, existed, outcome);
}

/// False, with a failure, for a plan that cannot be.
bool IsPossible(ConvertOptions& options, const ReadResult& source, Outcome& outcome) {
    if (!outcome.plan.format)
        outcome.Fail(
            ExitStatus::Refused, FailureTypes::kUnsupportedFile,
            "File <" + options.target + "> is not of a kind that can be saved here; see mapanchor formats.");
    return !outcome.failure && HasWhatItNeeds(options, source.reference, outcome) &&
           MayWrite(options, source.used_file, outcome) &&
           (!outcome.plan.IsPdf() || FitToPage(options, outcome));
}

void CarryOut(const ConvertOptions& options, const BGeoReference& reference, LogCollector& log,
              Outcome& outcome) {
    if (outcome.plan.IsPdf()) return SavePdf(options, reference, log, outcome);
    if (options.dry_run || (options.backup && !KeepCopies(outcome))) return;
    Save(options, reference, outcome);
}

}  // namespace

namespace {

/// A table of QGIS that becomes one again keeps the words of its system and the names of its columns.
void KeepWordsOfPoints(const Plan& plan, ConvertOptions& options) {
    const BString source(options.source);
    if (!plan.Is(EReferenceType::Points) ||
        BFileUtilities::GetExtension(source).ToLower() != BString(".points"))
        return;
    try {
        const auto file = BControlPointFile::Read(source);
        options.read.params.SetString(BMapAnchor::kValPointsSystem, file.CoordSys);
        options.read.params.SetInteger(BMapAnchor::kValPointsOldHeader, file.OldHeader ? 1 : 0);
    } catch (const BException&) {  // a reference of another kind under that name
    }
}

}  // namespace

Outcome SaveReading(ConvertOptions options, ReadResult source, LogCollector& log) {
    options.read.width = source.width;
    options.read.height = source.height;
    options.points = std::move(source.points);
    if (options.image.empty() && !source.raster.empty())
        options.image = ImageNameFor(options.target, source.raster);
    Outcome outcome;
    outcome.status = source.Status();
    outcome.failure = source.failure;
    outcome.diagnostics = std::move(source.diagnostics);
    if (outcome.failure) return outcome;
    // Writers count from the corner of the top left pixel.
    if (source.centre_anchored) source.reference = BSaving::FromCentre(source.reference);
    outcome.plan = MakePlan(options, source.reference);
    KeepWordsOfPoints(outcome.plan, options);
    if (!IsPossible(options, source, outcome)) return outcome;
    WarnOfLosses(options, source.reference, outcome);
    CarryOut(options, source.reference, log, outcome);
    log.MoveTo(outcome.diagnostics, outcome.failure ? &*outcome.failure : nullptr);
    if (!outcome.failure)
        outcome.status = AreDoubtful(outcome.diagnostics) ? ExitStatus::Warnings : ExitStatus::Done;
    return outcome;
}

namespace {

Outcome Convert(const ConvertOptions& options, LogCollector& log) {
    ReadResult source = ReadFile(options.source, options.read, log);
    return SaveReading(options, std::move(source), log);
}

/// What a PDF says now, or would say.
void PutSaved(Json& top, Json& ours, const Outcome& outcome) {
    if (!outcome.saved) return;
    Json saved = JsonWithoutPoints(*outcome.saved);
    top["size"] = saved["size"];
    if (saved["mapanchor"].contains("points")) ours["points"] = PointsJson(*outcome.saved);
    for (const char* key : {"coordSys", "pdfPage"})
        if (saved["mapanchor"].contains(key)) ours[key] = saved["mapanchor"][key];
}

void PutProof(const BSavingProof& proof, Json& ours) {
    Json shown = {{"exact", proof.IsExact()},
                  {"sameSystem", proof.IsSameSystem()},
                  {"confirmedByGdal", proof.IsConfirmedByGdal()},
                  {"text", proof.GetText().StdStr()}};
    if (std::isfinite(proof.GetSystemMetres())) shown["systemMetres"] = proof.GetSystemMetres();
    Json closeness;
    if (std::isfinite(proof.GetPixels())) closeness["pixels"] = proof.GetPixels();
    if (std::isfinite(proof.GetMetres())) closeness["metres"] = proof.GetMetres();
    if (!closeness.empty()) ours["closeness"] = std::move(closeness);
    ours["proof"] = std::move(shown);
}

Json RenderJson(const ConvertOptions& options, const Outcome& outcome) {
    Json top = JsonAbout(options.source);
    Json ours = {{"schemaVersion", kSchemaVersion}, {"ok", !outcome.failure}};
    if (outcome.failure) {
        ours["error"] = Tool::RenderJson(*outcome.failure);
    } else {
        ours["referenceType"] = outcome.plan.Kind();
        ours["dryRun"] = options.dry_run;
        ours["written"] = outcome.plan.files;
        PutSaved(top, ours, outcome);
    }
    if (!outcome.kept.empty()) ours["kept"] = outcome.kept;
    if (outcome.proof) PutProof(*outcome.proof, ours);
    ours["diagnostics"] = Tool::RenderJson(outcome.diagnostics);
    top["mapanchor"] = std::move(ours);
    return top;
}

void PrintText(const ConvertOptions& options, const Outcome& outcome, const Console& console) {
    for (const std::string& file : outcome.kept)
        console.Print("kept " + Printable(file) + "\n");
    if (outcome.failure) return;
    for (const std::string& file : outcome.plan.files)
        console.Print((options.dry_run ? "would write " : "wrote ") + Printable(file) + "\n");
    if (outcome.saved && options.dry_run) PrintReference(*outcome.saved, options.common, console);
    if (outcome.proof && outcome.proof->IsRead())
        console.Print(Printable(outcome.proof->GetText().StdStr()) + "\n");
}

ExitStatus Run(const ConvertOptions& options) {
    const Console console = options.common.MakeConsole();
    LogCollector log;
    const Outcome outcome = Convert(options, log);
    if (options.common.json) {
        console.Print(ToText(RenderJson(options, outcome), options.common));
        return outcome.status;
    }
    PrintText(options, outcome, console);
    TalkAbout(options.source, outcome.diagnostics, outcome.failure ? &*outcome.failure : nullptr, console);
    return outcome.status;
}

}  // namespace

void AddConvertCommand(CLI::App& app, ExitStatus& status) {
    auto options = std::make_shared<ConvertOptions>();
    CLI::App* convert = app.add_subcommand("convert", kDescription);
    convert->add_option("SRC", options->source, "File to read")->required();
    convert->add_option("DST", options->target, "File to save")->required();
    convert
        ->add_option_function<std::string>(
            "--to", [options](const std::string& word) { options->to = KindFromWord("--to", word); },
            "Save as this kind, whatever the target's name: " + KindWords(true))
        ->type_name("KIND");
    convert->add_option("--image", options->image, "File name of the raster, which some kinds store")
        ->type_name("NAME");
    convert->add_flag("--overwrite", options->overwrite,
                      "Replace existing files; georeference a raster or a PDF in place");
    convert->add_flag("--backup", options->backup, "Keep a copy, .bak, of each file that is overwritten");
    convert->add_flag("--no-sync", options->no_sync,
                      "Do not wait until the file is on the disk; a power failure may then spoil it");
    convert->add_flag("--no-verify", options->no_verify,
                      "Do not read the saved file back and compare it with the reference");
    convert->add_flag_callback(
        "--verify", [o = options.get()] { o->no_verify = false; },
        "Read the saved file back and compare it; the default");
    AddNumber(
        *convert, "--tolerance", [o = options.get()](double value) { o->tolerance = value; }, {0.0, 1e9},
        "How far what is read back may be from the reference, in pixels; 0.001 and 1 mm without it")
        ->type_name("PX");
    convert->add_flag("--require-exact", options->require_exact,
                      "Keep the old file when what is read back is farther away");
    convert->add_flag("--dry-run", options->dry_run, "Show what would be written, and write nothing");
    AddPdfTargetOptions(*convert, *options);
    options->read.AddTo(*convert);
    options->common.AddTo(*convert);
    convert->callback([options, &status] { status = Run(*options); });
}

}  // namespace Tool
