#include "Border.h"

#include "read/ImageName.h"

#include <Tellurion/BException.h>
#include <Tellurion/BMathTransform.h>
#include <Tellurion/ThreadLog.h>

#include <cmath>
#include <filesystem>
#include <memory>
#include <system_error>

using namespace Border;

namespace {

using MapAnchor::BSaving;
using MapAnchor::BSavingOptions;
using Tellurion::BGeoReference;
using Tellurion::BMathTransform;
using Tellurion::BString;

/// What is saved, however the caller gave it.
struct Subject {
    BGeoReference reference;
    bool centre_anchored = false;
    long width = 0;
    long height = 0;
    std::string raster;
    std::vector<Tellurion::BControlPoint> points = {};
};

double Tolerance(double given, double common, const char* name) {
    if (given == 0.0) return common;
    if (given > 0.0 && std::isfinite(given)) return given;
    throw Refusal{MAPANCHOR_BAD_ARGUMENT, std::string(name) + " is not a number from 0"};
}

BSavingOptions OptionsOf(const std::string& file, const Subject& subject,
                         const mapanchor_save_options* options) {
    const mapanchor_save_options given = Known(options, "options");
    BSavingOptions saving;
    const long width = SideOf(given.width, "options.width");
    const long height = SideOf(given.height, "options.height");
    saving.SetSize(width > 0 ? width : subject.width, height > 0 ? height : subject.height);
    saving.SetOverwrites(given.keeps_existing == 0);
    saving.SetSyncs(given.skips_sync == 0);
    saving.SetVerifies(given.skips_proof == 0);
    saving.SetRequiresExact(given.requires_exact != 0);
    saving.SetTolerance(
        Tolerance(given.tolerance_pixels, saving.GetTolerancePixels(), "options.tolerance_pixels"),
        Tolerance(given.tolerance_metres, saving.GetToleranceMetres(), "options.tolerance_metres"));
    saving.SetCentreAnchored(subject.centre_anchored);
    saving.SetControlPoints(subject.points);
    if (given.image_name) saving.SetImageName(BString(given.image_name));
    if (!given.image_name && !subject.raster.empty())
        saving.SetImageName(BString(Tool::ImageNameFor(file, subject.raster)));
    return saving;
}

/// Saves, and names the file in whatever goes wrong. What is logged meanwhile is in the remarks of a
/// save that succeeds, and says no more than the failure of one that does not.
BSaving SaveQuietly(const std::string& file, const BGeoReference& reference, const BSavingOptions& options) {
    const Tellurion::ThreadLog unheard;
    std::error_code ignored;
    const bool was_there = std::filesystem::exists(file, ignored);
    try {
        return BSaving::Of(BString(file), reference, options);
    } catch (const Tellurion::BException& error) {
        const Tool::Failure failure = Tool::FailureOf(error);
        std::string text = failure.Text();
        if (text.find(file) == std::string::npos) text = file + ": " + text;
        if (was_there && !options.Overwrites())
            text += "; the file is there, and options.keeps_existing is 1";
        throw Refusal{StatusOf(failure), text};
    }
}

mapanchor_saving* Save(const std::string& file, const Subject& subject,
                       const mapanchor_save_options* options) {
    const BSaving saving = SaveQuietly(file, subject.reference, OptionsOf(file, subject, options));
    auto handle = std::make_unique<mapanchor_saving>();
    handle->proof = saving.GetProof();
    handle->text = saving.GetProof().GetText().StdStr();
    Tool::AddRemarks(saving.GetDiagnostics(), handle->diagnostics);
    if (saving.IsTakenBack())
        throw Refusal{MAPANCHOR_NOT_EXACT,
                      file + ": the save is not exact and was taken back: " + handle->text};
    return handle.release();
}

Subject SubjectOf(const mapanchor_reading& reading) {
    if (reading.status != MAPANCHOR_OK) throw Refusal{reading.status, reading.error};
    const Tool::ReadResult& result = reading.result;
    return {result.reference,          result.centre_anchored, result.width.value_or(0),
            result.height.value_or(0), result.raster,          result.points};
}

Subject SubjectOf(const mapanchor_reference& given) {
    if (!given.has_affine) throw Refusal{MAPANCHOR_BAD_ARGUMENT, "reference.has_affine is 0"};
    for (const double term : given.affine)
        if (!std::isfinite(term))
            throw Refusal{MAPANCHOR_BAD_ARGUMENT, "reference.affine has a term that is not a number"};
    if (given.pixel_anchor != MAPANCHOR_CORNER && given.pixel_anchor != MAPANCHOR_CENTRE)
        throw Refusal{MAPANCHOR_BAD_ARGUMENT, "reference.pixel_anchor is not a mapanchor_anchor"};
    Subject subject;
    subject.centre_anchored = given.pixel_anchor == MAPANCHOR_CENTRE;
    subject.width = SideOf(given.width, "reference.width");
    subject.height = SideOf(given.height, "reference.height");
    const double* const t = given.affine;
    const std::unique_ptr<BMathTransform> transform(
        BMathTransform::CreateAffine(t[0], t[1], t[2], t[3], t[4], t[5], true));
    if (!transform) throw Refusal{MAPANCHOR_BAD_ARGUMENT, "reference.affine has no inverse"};
    subject.reference.SetMathTransform(*transform);
    if (given.wkt)
        subject.reference.CoordSys = SystemOf(given.wkt);
    else if (given.epsg != 0)
        subject.reference.CoordSys = SystemOf("EPSG:" + std::to_string(given.epsg));
    return subject;
}

}  // namespace

extern "C" {

mapanchor_saving* mapanchor_save(const char* file, const mapanchor_reading* reading,
                                 const mapanchor_save_options* options) {
    return Made([&] { return Save(&Needed(file, "file"), SubjectOf(Needed(reading, "reading")), options); });
}

mapanchor_saving* mapanchor_save_affine(const char* file, const mapanchor_reference* reference,
                                        const mapanchor_save_options* options) {
    return Made([&] {
        const mapanchor_reference given = Known(&Needed(reference, "reference"), "reference");
        return Save(&Needed(file, "file"), SubjectOf(given), options);
    });
}

int mapanchor_saving_proof(const mapanchor_saving* saving, mapanchor_proof* proof) {
    return Done([&] {
        const mapanchor_saving& handle = Needed(saving, "saving");
        mapanchor_proof known{};
        known.is_read = handle.proof.IsRead() ? 1 : 0;
        known.is_exact = handle.proof.IsExact() ? 1 : 0;
        known.is_confirmed_by_gdal = handle.proof.IsConfirmedByGdal() ? 1 : 0;
        known.is_same_system = handle.proof.IsSameSystem() ? 1 : 0;
        known.pixels = handle.proof.GetPixels();
        known.metres = handle.proof.GetMetres();
        known.text = handle.text.c_str();
        Give(known, proof, "proof");
    });
}

size_t mapanchor_saving_diagnostic_count(const mapanchor_saving* saving) {
    return saving ? saving->diagnostics.size() : 0;
}

int mapanchor_saving_diagnostic(const mapanchor_saving* saving, size_t index,
                                mapanchor_diagnostic* diagnostic) {
    return Done([&] { GiveDiagnostic(Needed(saving, "saving").diagnostics, index, diagnostic); });
}

void mapanchor_free_saving(mapanchor_saving* saving) {
    delete saving;
}
}
