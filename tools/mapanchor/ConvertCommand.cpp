#include "Commands.h"
#include "CommonOptions.h"
#include "JsonRenderer.h"
#include "ReadFile.h"
#include "ReadOptions.h"
#include "TextRenderer.h"

#include <MapAnchor/BMapAnchor.h>
#include <MapAnchor/BReferenceFormats.h>
#include <Tellurion/BFileUtilities.h>

#include <algorithm>
#include <filesystem>
#include <memory>

namespace {

using namespace Tellurion;
using MapAnchor::BMapAnchor;
using MapAnchor::BReferenceFormat;
using MapAnchor::BReferenceFormats;

constexpr const char* kDescription =
    "Read a reference and save it as the kind that the target's extension names\n\n"
    "Examples:\n"
    "  mapanchor convert map.tfw copy.jgw\n"
    "  mapanchor convert --dry-run map.tfw other.wld\n"
    "  mapanchor convert --overwrite map.tfw map.tif\n"
    "  mapanchor convert --to wld --overwrite map.pgw map.txt";

struct ConvertOptions {
    CommonOptions common;
    ReadOptions read;
    std::string source;
    std::string target;
    std::optional<EReferenceType> to;
    std::string image;
    bool overwrite = false;
    bool dry_run = false;
};

/// What a kind of target holds of a reference, and what it wants to know of the raster.
struct Capacity {
    const char* kind;
    bool coord_sys;
    bool points;
    bool disabled_points;
    bool vertical_unit;
    bool needs_system = false;  ///< without one a default is written
    bool names_image = false;
    bool states_size = false;
    bool needs_corners = false;  ///< a transform alone is told by the raster's corners
};

constexpr Capacity kCapacities[] = {
    {"WLD", true, false, false, false},
    {.kind = "RSF",
     .coord_sys = true,
     .points = true,
     .disabled_points = true,
     .vertical_unit = true,
     .needs_corners = true},
    {.kind = "TAB",
     .coord_sys = true,
     .points = true,
     .disabled_points = false,
     .vertical_unit = false,
     .needs_system = true,
     .names_image = true,
     .needs_corners = true},
    {.kind = "ERS",
     .coord_sys = true,
     .points = false,
     .disabled_points = false,
     .vertical_unit = false,
     .names_image = true,
     .states_size = true},
    {"TIF", true, true, true, true},
    {"PDF", true, true, true, false},
};

/// Null for a kind that nothing is known of.
const Capacity* CapacityOf(const std::string& kind) {
    const auto* const found = std::find_if(std::begin(kCapacities), std::end(kCapacities),
                                           [&](const Capacity& c) { return kind == c.kind; });
    return found == std::end(kCapacities) ? nullptr : found;
}

/// A save that is about to happen, or would.
struct Plan {
    std::string kind;  ///< empty when the target's extension names none
    /// The target is a raster that takes the reference in; all other kinds are made anew.
    bool IsInPlace() const { return kind == "TIF"; }
    bool writes_prj = false;
    std::vector<std::string> files;
};

struct Outcome {
    std::optional<Failure> failure;
    ExitStatus status = ExitStatus::Done;
    Plan plan;
    Diagnostics diagnostics;

    void Fail(ExitStatus with, const char* type, const std::string& detail) {
        failure = Failure{type, "", "mapanchor", detail};
        status = with;
    }
    void Warn(const std::string& text) { diagnostics.push_back({false, text}); }
};

bool IsWorldFileByName(const ConvertOptions& options, const Plan& plan) {
    return !options.to && plan.kind == "WLD";
}

Plan MakePlan(const ConvertOptions& options, const BGeoReference& reference) {
    Plan plan;
    const BString extension = BFileUtilities::GetExtension(BString(options.target)).ToLower();
    for (const BReferenceFormat& format : BReferenceFormats::List()) {
        const auto& extensions = format.SaveExtensions;
        const bool by_name = std::find(extensions.begin(), extensions.end(), extension) != extensions.end();
        if (options.to ? format.HasType && format.Type == *options.to : by_name)
            plan.kind = format.Name.StdStr();
    }
    plan.files.push_back(options.target);
    plan.writes_prj = IsWorldFileByName(options, plan) && reference.HasCoordSys();
    if (plan.writes_prj)
        plan.files.push_back(BFileUtilities::ChangeExtension(BString(options.target), "prj").StdStr());
    return plan;
}

bool HasDisabledPoints(const BGeoReference& reference) {
    return std::any_of(reference.PointPairVector.begin(), reference.PointPairVector.end(),
                       [](const BPointPair& pair) { return !pair.Enabled; });
}

void WarnOfPointLosses(const Capacity& capacity, const BGeoReference& reference, Outcome& outcome) {
    if (reference.PointPairVector.empty()) return;
    if (!capacity.points)
        outcome.Warn("the control points are not saved: this kind of file has no place for them");
    else if (!capacity.disabled_points && HasDisabledPoints(reference))
        outcome.Warn(
            "disabled control points are saved like the others: this kind of file has no mark for them");
}

void WarnOfLosses(const ConvertOptions& options, const BGeoReference& reference, Outcome& outcome) {
    const Capacity* capacity = CapacityOf(outcome.plan.kind);
    if (!capacity) return;
    const bool keeps_system = capacity->coord_sys && (outcome.plan.kind != "WLD" || outcome.plan.writes_prj);
    if (reference.HasCoordSys() && !keeps_system)
        outcome.Warn(
            options.to
                ? "the coordinate system is not saved: a world file saved by type has no prj file beside it"
                : "the coordinate system is not saved: this kind of file has no place for it");
    if (!reference.HasCoordSys() && capacity->needs_system)
        outcome.Warn("there is no coordinate system: longitude and latitude without a datum are written");
    WarnOfPointLosses(*capacity, reference, outcome);
    if (reference.HasVerticalUnit() && !capacity->vertical_unit)
        outcome.Warn("the vertical unit is not saved: this kind of file has no place for it");
    if (reference.HasVerticalUnit() && outcome.plan.IsInPlace() && !options.to)
        outcome.Warn("the vertical unit is not saved: a GeoTIFF takes it by type alone, see --to tif");
    if (capacity->names_image && options.image.empty())
        outcome.Warn("the file names no raster: --image NAME gives it one");
    if (capacity->states_size && !options.read.width)
        outcome.Warn("the file says 0 by 0 pixels: --size WxH gives the raster's size");
}

/// Corners of a raster of unknown size would be made up.
bool HasWhatItNeeds(const ConvertOptions& options, const BGeoReference& reference, Outcome& outcome) {
    const Capacity* capacity = CapacityOf(outcome.plan.kind);
    const bool has_size = options.read.width && *options.read.width > 1 && *options.read.height > 1;
    if (!capacity || !capacity->needs_corners || has_size || !reference.PointPairVector.empty() ||
        !reference.HasMathTransform())
        return true;
    outcome.Fail(ExitStatus::Error, "BGeoReferenceWriteException",
                 "The reference has no control points, and the corners that stand for them need the raster's "
                 "size, two pixels at least each way: --size WxH.");
    return false;
}

bool IsSameFile(const std::string& a, const std::string& b) {
    std::error_code error;
    return std::filesystem::equivalent(a, b, error) && !error;
}

/// True when nothing that the plan writes stands in the way.
bool MayWrite(const ConvertOptions& options, Outcome& outcome) {
    for (const std::string& file : outcome.plan.files) {
        if (IsSameFile(options.source, file)) {
            outcome.Fail(ExitStatus::Error, "BFileAccessException",
                         "Source and target are the same file <" + file + ">.");
            return false;
        }
        if (options.overwrite || !BFileUtilities::Exists(BString(file))) continue;
        outcome.Fail(ExitStatus::Error, "BFileAccessException",
                     "File <" + file + "> exists; --overwrite " +
                         (outcome.plan.IsInPlace() ? "georeferences it in place." : "replaces it."));
        return false;
    }
    if (!outcome.plan.IsInPlace() || BFileUtilities::Exists(BString(options.target))) return true;
    outcome.Fail(
        ExitStatus::Error, "BFileAccessException",
        "File <" + options.target + "> does NOT exist; a reference is saved into a raster that is there.");
    return false;
}

void CallSave(const ConvertOptions& options, const BGeoReference& reference) {
    const BString target(options.target);
    const long width = options.read.width.value_or(0);
    const long height = options.read.height.value_or(0);
    const BString image(options.image);
    if (options.to)
        BMapAnchor::Save(*options.to, target, reference, width, height, image,
                         options.read.flags | BMapAnchor::kStrictTransform, &options.read.params);
    else
        BMapAnchor::Save(target, reference, width, height, image, &options.read.params);
}

ExitStatus StatusOf(const Failure& failure) {
    const bool refused = failure.type == "BUnsupportedFileTypeException" ||
                         failure.type == "BGeoReferenceNotSupportedException";
    return refused ? ExitStatus::Refused : ExitStatus::Error;
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

bool KeepsSystem(const std::string& target) {
    BGeoReference back;
    try {
        BMapAnchor::Read(EReferenceType::ERS, BString(target), back, 0, 0, EMathTransformType::Affine, 0,
                         nullptr);
    } catch (...) {
    }
    return back.HasCoordSys();
}

/// An ERS header names systems in a language of its own. Each road of the library
/// knows some that the other one leaves out without a word.
void SaveSystemInErs(const ConvertOptions& options, const BGeoReference& reference, Outcome& outcome) {
    if (outcome.plan.kind != "ERS" || !reference.HasCoordSys() || KeepsSystem(options.target)) return;
    if (!options.to) {
        ConvertOptions by_type = options;
        by_type.to = EReferenceType::ERS;
        CallSave(by_type, reference);
        if (KeepsSystem(options.target)) return;
    }
    outcome.Warn("the coordinate system is not saved: it has no name in this kind of file");
}

void Save(const ConvertOptions& options, const BGeoReference& reference, Outcome& outcome) {
    const bool existed = BFileUtilities::Exists(BString(options.target));
    try {
        CallSave(options, reference);
        SaveSystemInErs(options, reference, outcome);
    } catch (...) {
        outcome.failure = CurrentFailure();
    }
    if (!outcome.failure && !BFileUtilities::Exists(BString(options.target)))
        outcome.Fail(ExitStatus::Error, "BGeoReferenceWriteException",
                     "Nothing was saved: the reference has no part that this kind of file holds.");
    if (!outcome.failure) return;
    outcome.status = StatusOf(*outcome.failure);
    if (outcome.status != ExitStatus::Refused) CleanUp(options.target, existed, outcome);
}

Outcome Convert(ConvertOptions options, LogCollector& log) {
    ReadResult source = ReadFile(options.source, options.read, log);
    options.read.width = source.width;
    options.read.height = source.height;
    Outcome outcome;
    outcome.status = source.Status();
    outcome.failure = source.failure;
    outcome.diagnostics = std::move(source.diagnostics);
    if (outcome.failure) return outcome;
    outcome.plan = MakePlan(options, source.reference);
    if (outcome.plan.kind.empty()) {
        outcome.Fail(
            ExitStatus::Refused, "BUnsupportedFileTypeException",
            "File <" + options.target + "> is not of a kind that can be saved here; see mapanchor formats.");
        return outcome;
    }
    if (!HasWhatItNeeds(options, source.reference, outcome) || !MayWrite(options, outcome)) return outcome;
    WarnOfLosses(options, source.reference, outcome);
    if (!options.dry_run) Save(options, source.reference, outcome);
    log.MoveTo(outcome.diagnostics, outcome.failure.has_value());
    if (!outcome.failure)
        outcome.status = outcome.diagnostics.empty() ? ExitStatus::Done : ExitStatus::Warnings;
    return outcome;
}

Json RenderJson(const ConvertOptions& options, const Outcome& outcome) {
    Json ours = {{"schemaVersion", kSchemaVersion}, {"ok", !outcome.failure}};
    if (outcome.failure) {
        ours["error"] = ::RenderJson(*outcome.failure);
    } else {
        ours["referenceType"] = outcome.plan.kind;
        ours["dryRun"] = options.dry_run;
        ours["written"] = outcome.plan.files;
    }
    ours["diagnostics"] = ::RenderJson(outcome.diagnostics);
    return {{"description", options.source}, {"mapanchor", std::move(ours)}};
}

ExitStatus Run(const ConvertOptions& options) {
    const Console console = options.common.MakeConsole();
    LogCollector log;
    const Outcome outcome = Convert(options, log);
    if (options.common.json) {
        console.Print(ToText(RenderJson(options, outcome), options.common));
        return outcome.status;
    }
    if (!outcome.failure)
        for (const std::string& file : outcome.plan.files)
            console.Print((options.dry_run ? "would write " : "wrote ") + file + "\n");
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
            "Save as this kind, by type, whatever the target's name")
        ->type_name("KIND");
    convert->add_option("--image", options->image, "The raster's file name, which some kinds write down")
        ->type_name("NAME");
    convert->add_flag("--overwrite", options->overwrite,
                      "Replace files that exist; georeference a raster in place");
    convert->add_flag("--dry-run", options->dry_run, "Say what would be written and write nothing");
    options->read.AddTo(*convert);
    options->common.AddTo(*convert);
    convert->callback([options, &status] { status = Run(*options); });
}
