#include <MapAnchor/BSaving.h>

#include "KeptFiles.h"
#include "PdfRemarks.h"
#include "SavingLosses.h"
#include "SavingPdf.h"
#include "SavingProof.h"
#include "common/points/ExactPoints.h"
#include "common/policy/DiagnosticIds.h"
#include "common/policy/DiagnosticParts.h"
#include "common/policy/ReadNotes.h"

#include <MapAnchor/BGeoReferenceWriteException.h>
#include <MapAnchor/BMapAnchor.h>
#include <Tellurion/BControlPoint.h>
#include <Tellurion/BException.h>
#include <Tellurion/BFileUtilities.h>
#include <Tellurion/BLogger.h>
#include <Tellurion/NewFilesOnly.h>
#include <Tellurion/ThreadLog.h>
#include <Tellurion/WithoutSync.h>

#include <algorithm>
#include <optional>
#include <string_view>

namespace MapAnchor {

using namespace Tellurion;

struct BSaving::State {
    bool is_taken_back = false;
    BSavingProof proof;
    std::vector<BDiagnostic> diagnostics;
};

namespace {

constexpr double kHalf = 0.5;

bool IsKind(const ReferenceFormat* kind, std::string_view name) {
    return kind && name == kind->name;
}

/// The transform that begins at the corner. Empty where it cannot be made.
std::optional<BMathTransform> ShiftedTransform(const BGeoReference& reference) {
    const BMathTransform& transform = *reference.MathTransform;
    const EMathTransformType type = transform.GetMathTransformType();
    try {
        if (type != EMathTransformType::Affine && !reference.PointPairVector.empty()) {
            std::vector<BControlPoint> points = BControlPoint::From(reference.PointPairVector);
            for (BControlPoint& point : points) {
                point.Column += kHalf;
                point.Row += kHalf;
            }
            return BMathTransform::Fit(type, points, 0, 0);
        }
        double a, b, c, d, e, f;
        transform.GetAffineParameters(a, b, c, d, e, f);
        const std::unique_ptr<BMathTransform> shifted(BMathTransform::CreateAffine(
            a, b, c - kHalf * a - kHalf * b, d, e, f - kHalf * d - kHalf * e, transform.GetOptimizeFor2D()));
        if (shifted) return *shifted;
    } catch (const BException&) {
        // Left where it is; the proof shows the half pixel.
    }
    return std::nullopt;
}

void SaveOnce(const BString& file, const BGeoReference& reference, const BSavingOptions& options,
              const std::optional<EReferenceType>& type) {
    if (type)
        BMapAnchor::Save(*type, file, reference, options.GetWidth(), options.GetHeight(),
                         options.GetImageName(), options.GetFlags(), &options.GetParams());
    else
        BMapAnchor::Save(file, reference, options.GetWidth(), options.GetHeight(), options.GetImageName(),
                         &options.GetParams());
}

std::optional<EReferenceType> TypeOf(const ReferenceFormat* kind, const BSavingOptions& options) {
    if (options.HasType()) return options.GetType();
    if (kind && !kind->named_save && kind->typed_save) return kind->type;
    return std::nullopt;
}

/// Either path of the library knows some systems in an ERS header that the other one leaves out.
bool LacksSystem(const BString& file) {
    BGeoReference back;
    const ThreadLog ignored;
    try {
        BMapAnchor::Read(EReferenceType::ERS, file, back, 0, 0, EMathTransformType::Affine, 0, nullptr);
    } catch (const BException&) {
        return false;
    }
    return !back.HasCoordSys();
}

void SaveFully(const ReferenceFormat* kind, const BString& file, const BGeoReference& reference,
               const BSavingOptions& options) {
    const std::optional<EReferenceType> type = TypeOf(kind, options);
    SaveOnce(file, reference, options, type);
    if (!type && IsKind(kind, "ERS") && reference.HasCoordSys() && LacksSystem(file))
        SaveOnce(file, reference, options, EReferenceType::ERS);
}

void AddLog(const std::vector<BString>& lines, std::vector<BDiagnostic>& diagnostics) {
    for (const BString& entry : lines) {
        std::string line = entry.StdStr();
        std::replace(line.begin(), line.end(), '\n', ' ');  // those of the writers' formats
        const char* const id = IdOfPdfRemark(line);
        if (id) line.erase(0, std::string_view(id).size() + 2);
        diagnostics.push_back(
            DiagnosticParts{.id = id ? id : DiagnosticId::kSaveRemark, .text = BString(line)}.Make());
    }
}

/// Runs the save; what it logs becomes diagnostics, or is logged where it fails.
void SaveAndListen(const ReferenceFormat* kind, const BString& file, const BGeoReference& reference,
                   const BSavingOptions& options, std::vector<BDiagnostic>& diagnostics) {
    std::vector<BString> lines;
    try {
        const ReadNotes notes;
        ThreadLog log;
        const ExactPoints exact(options.GetControlPoints());
        std::optional<NewFilesOnly> new_files;
        if (!options.Overwrites() && !(kind && kind->in_place)) new_files.emplace();
        std::optional<WithoutSync> without_sync;
        if (!options.Syncs()) without_sync.emplace();
        try {
            SaveFully(kind, file, reference, options);
        } catch (...) {
            lines = log.Take();
            throw;
        }
        AddLog(log.Take(), diagnostics);
        diagnostics.insert(diagnostics.end(), notes.diagnostics.begin(), notes.diagnostics.end());
    } catch (...) {
        for (const BString& line : lines)
            BLogger::Instance()->WriteLine(ELogSeverity::Error, "%ls", line);
        throw;
    }
}

/// All that a save may write.
std::vector<BString> FilesOf(const ReferenceFormat* kind, const BString& file,
                             const BGeoReference& reference) {
    std::vector<BString> files{file};
    if (IsKind(kind, "WLD") && reference.HasCoordSys())
        files.push_back(BFileUtilities::ChangeExtension(file, "prj"));
    if (IsKind(kind, "TIF")) files.push_back(file + BString(".aux.xml"));
    return files;
}

void Append(const std::vector<BDiagnostic>& more, std::vector<BDiagnostic>& diagnostics) {
    diagnostics.insert(diagnostics.end(), more.begin(), more.end());
}

}  // namespace

BSaving BSaving::Of(const BString& file, const BGeoReference& reference, const BSavingOptions& options) {
    const ReferenceFormat* const kind = FindSavedKind(file, options);
    const BGeoReference meant = options.IsCentreAnchored() ? FromCentre(reference) : reference;
    auto state = std::make_shared<State>();
    BSavingOptions saved = options;
    saved.SetCentreAnchored(false);
    BParamList params = options.GetParams();
    params.SetInteger(BMapAnchor::kValReplaceSystem, 1);
    saved.SetParams(params);
    if (kind) state->diagnostics = FindSavingLosses(*kind, meant, saved);
    KeptFiles kept;
    if (options.RequiresExact()) kept.Keep(FilesOf(kind, file, meant));
    BSavingOptions read = saved;
    if (IsKind(kind, "PDF")) {
        const PagePlacement placed = PlaceOnPage(file, meant, saved);
        Append(placed.diagnostics, state->diagnostics);
        read = placed.read_options;
        SaveAndListen(kind, file, placed.reference, placed.options, state->diagnostics);
    } else {
        SaveAndListen(kind, file, meant, saved, state->diagnostics);
    }
    if (!kind || !(options.Verifies() || options.RequiresExact())) return BSaving(std::move(state));
    state->proof = ProveSave(*kind, file, meant, read);
    Append(state->proof.GetDiagnostics(), state->diagnostics);
    if (!options.RequiresExact() || state->proof.IsExact()) return BSaving(std::move(state));
    if (const std::string failure = kept.Restore(); !failure.empty())
        throw BGeoReferenceWriteException("BSaving::Of", BString(failure));
    state->is_taken_back = true;
    return BSaving(std::move(state));
}

std::vector<BDiagnostic> BSaving::FindLosses(const BString& file, const BGeoReference& reference,
                                             const BSavingOptions& options) {
    const ReferenceFormat* const kind = FindSavedKind(file, options);
    return kind ? FindSavingLosses(*kind, reference, options) : std::vector<BDiagnostic>();
}

double BSaving::FindRounding(const BString& file, const BGeoReference& reference,
                             const BSavingOptions& options) {
    const ReferenceFormat* const kind = FindSavedKind(file, options);
    return kind ? FindRoundingOfPoints(*kind, reference, options) : 0.0;
}

BSavingProof BSaving::Verify(const BString& file, const BGeoReference& reference,
                             const BSavingOptions& options) {
    const ReferenceFormat* const kind = FindSavedKind(file, options);
    if (!kind) return {};
    return ProveSave(*kind, file, options.IsCentreAnchored() ? FromCentre(reference) : reference, options);
}

BGeoReference BSaving::FromCentre(const BGeoReference& reference) {
    BGeoReference corner = reference;
    if (!reference.HasMathTransform()) return corner;
    const std::optional<BMathTransform> shifted = ShiftedTransform(reference);
    if (!shifted) return corner;
    for (BPointPair& pair : corner.PointPairVector) {
        const BPoint pixel(pair.Column, pair.Row, 0.0);
        const BPoint there = shifted->ConvertSourceToTarget(pixel);
        const BPoint here = reference.MathTransform->ConvertSourceToTarget(pixel);
        pair.World.x += there.x - here.x;
        pair.World.y += there.y - here.y;
    }
    corner.SetMathTransform(*shifted);
    return corner;
}

BSaving::BSaving(std::shared_ptr<const State> state) : state_(std::move(state)) {}
BSaving::BSaving(const BSaving&) = default;
BSaving& BSaving::operator=(const BSaving&) = default;
BSaving::~BSaving() = default;

bool BSaving::IsTakenBack() const {
    return state_->is_taken_back;
}

const BSavingProof& BSaving::GetProof() const {
    return state_->proof;
}

const std::vector<BDiagnostic>& BSaving::GetDiagnostics() const {
    return state_->diagnostics;
}

}  // namespace MapAnchor
