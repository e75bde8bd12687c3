#include "SavingLosses.h"

#include "SavingProof.h"
#include "common/policy/DiagnosticIds.h"
#include "common/policy/DiagnosticParts.h"
#include "common/storing/Affine.h"

#include <Tellurion/BException.h>
#include <Tellurion/BLinearUnit.h>
#include <Tellurion/Numbers.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>

namespace MapAnchor {

using namespace Tellurion;
using ESeverity = BDiagnostic::ESeverity;

namespace {

class LossFinder {
public:
    LossFinder(const ReferenceFormat& kind, const BGeoReference& reference, const BSavingOptions& options)
        : kind_(kind), reference_(reference), options_(options) {}

    std::vector<BDiagnostic> Find() {
        FindInSystem();
        FindInPoints();
        FindInTransform();
        FindInVerticalUnit();
        FindLacks();
        return std::move(found_);
    }

private:
    void Add(const char* id, const std::string& text, ESeverity severity = ESeverity::Warning) {
        found_.push_back(DiagnosticParts{.id = id, .severity = severity, .text = BString(text)}.Make());
    }

    void FindInSystem();
    void FindInWholeSystem(const BCoordSys& system);
    void FindInPoints();
    void FindInPointFields();
    void FindInTransform();
    std::string AdviceFor(EMathTransformType fit, bool is_affine) const;
    void FindInDigits();
    void FindInVerticalUnit();
    void FindLacks();

    std::size_t EnabledPoints() const {
        return static_cast<std::size_t>(std::count_if(reference_.PointPairVector.begin(),
                                                      reference_.PointPairVector.end(),
                                                      [](const BPointPair& pair) { return pair.Enabled; }));
    }
    bool SavesPoints() const {
        return kind_.points && !reference_.PointPairVector.empty() && EnabledPoints() >= kind_.min_points;
    }

    const ReferenceFormat& kind_;
    const BGeoReference& reference_;
    const BSavingOptions& options_;
    std::vector<BDiagnostic> found_;
};

std::string NameOf(const BCoordSys& system) {
    const std::string name = system.GetName().StdStr();
    const std::string code = system.ToEPSGCode().StdStr();
    if (name.empty()) return code.empty() ? "without a name" : code;
    return code.empty() ? name : name + " (" + code + ")";
}

const char* NameOf(EMathTransformType type) {
    switch (type) {
        case EMathTransformType::Conformal:
            return "conformal";
        case EMathTransformType::Polynomial2:
            return "poly2";
        case EMathTransformType::Polynomial3:
            return "poly3";
        case EMathTransformType::Projective:
            return "projective";
        case EMathTransformType::ThinPlateSpline:
            return "tps";
        case EMathTransformType::Bilinear:
            return "bilinear";
        default:
            return "affine";
    }
}

/// A shift of the datum that is part of the system's own text and changes positions.
bool StatesShift(const BCoordSys& system) {
    const std::string text = system.ToWKT().StdStr();
    const std::size_t at = text.find("TOWGS84[");
    if (at == std::string::npos) return false;
    const std::string shift = text.substr(at + 8, text.find(']', at) - at - 8);
    return shift.find_first_of("123456789") != std::string::npos;
}

void LossFinder::FindInWholeSystem(const BCoordSys& system) {
    if (!kind_.datum_shift && StatesShift(system))
        Add(DiagnosticId::kLostDatumShift, "the datum shift that " + NameOf(system) +
                                               " states is not saved: this kind of file has no place for it");
    if (kind_.vertical_unit != Keeps::Nothing) return;  // these hold a whole system
    if (system.GetVerticalUnits())
        Add(DiagnosticId::kLostVerticalPart, "the vertical part of " + NameOf(system) +
                                                 " is not saved: this kind of file has no place for it");
    if (const double epoch = system.GetCoordinateEpoch(); epoch != 0.0)
        Add(DiagnosticId::kLostEpoch, "the coordinate epoch " + PrintShortest(epoch) +
                                          " is not saved: this kind of file has no place for it");
}

void LossFinder::FindInSystem() {
    const bool keeps = KeepsPart(kind_.coord_sys, options_, kind_);
    if (!reference_.HasCoordSys()) {
        if (kind_.needs_coord_sys)
            Add(DiagnosticId::kSystemAssumed,
                "there is no coordinate system: longitude and latitude without a datum are written");
        return;
    }
    if (keeps) return FindInWholeSystem(*reference_.CoordSys);
    Add(DiagnosticId::kLostSystem,
        kind_.coord_sys == Keeps::ByName
            ? "the coordinate system is not saved: a world file saved by type has no prj file beside it"
            : "the coordinate system is not saved: this kind of file has no place for it");
}

void LossFinder::FindInPointFields() {
    const auto& pairs = reference_.PointPairVector;
    const auto any = [&pairs](auto matches) { return std::any_of(pairs.begin(), pairs.end(), matches); };
    if (any([](const BPointPair& pair) { return !pair.Enabled; }) && !kind_.disabled_points)
        Add(DiagnosticId::kLostDisabledPoints,
            kind_.skips_disabled_points ? "disabled control points are not saved"
                                        : "disabled control points are saved like the others: this kind of "
                                          "file has no mark for them");
    if (!kind_.point_names && any([](const BPointPair& pair) { return !pair.Name.IsEmpty(); }))
        Add(DiagnosticId::kLostPointNames, "the names of the control points are not saved", ESeverity::Note);
    if (!kind_.point_heights && any([](const BPointPair& pair) { return pair.World.z != 0.0; }))
        Add(DiagnosticId::kLostPointHeights,
            "the heights of the control points are not saved: this kind of file has no place for them");
    constexpr double kNoCost = 1e-6;
    if (const double cost = FindRoundingOfPoints(kind_, reference_, options_); !(cost <= kNoCost))
        Add(DiagnosticId::kLostPointFractions,
            "the points are saved with whole pixels, which moves the fit through them by " +
                (std::isnan(cost) ? std::string("an unknown amount")
                                  : "up to " + PrintFixed(cost, 3) + " pixels"));
}

void LossFinder::FindInPoints() {
    if (reference_.PointPairVector.empty()) return;
    if (!kind_.points)
        return Add(DiagnosticId::kLostPoints,
                   "the control points are not saved: this kind of file has no place for them");
    if (!SavesPoints())
        return Add(DiagnosticId::kLostPoints, "the control points are not saved: this kind of file takes " +
                                                  std::to_string(kind_.min_points) + " or more of them");
    FindInPointFields();
}

std::optional<AffineTerms> TermsOf(const BMathTransform& transform) {
    AffineTerms t;
    try {
        transform.GetAffineParameters(t.a, t.b, t.c, t.d, t.e, t.f);
    } catch (const BException&) {
        return std::nullopt;
    }
    return t;
}

/// How to have a fit again that is lost to points. A fit with affine terms is held whole by a world file,
/// which other programs read as it is.
std::string LossFinder::AdviceFor(EMathTransformType fit, bool is_affine) const {
    const bool is_read = kind_.named_read || (kind_.typed_read && !kind_.refuses_typed_read);
    const std::string read = is_read ? std::string("read it with --fit ") + NameOf(fit) : "";
    const std::string save = is_affine ? "save a world file, which holds this fit" : "";
    if (read.empty() && save.empty()) return "the program that reads it makes its own";
    return read + (read.empty() || save.empty() ? "" : ", or ") + save;
}

void LossFinder::FindInTransform() {
    if (!reference_.HasMathTransform()) return;
    const EMathTransformType type = reference_.MathTransform->GetMathTransformType();
    const std::optional<AffineTerms> terms = TermsOf(*reference_.MathTransform);
    if (SavesPoints() && type != EMathTransformType::Affine)
        Add(DiagnosticId::kLostFit,
            "the file holds the points, not the fit: " + AdviceFor(type, terms.has_value()));
    else if (!terms && type != kind_.widest_fit)
        Add(DiagnosticId::kLostFit,
            std::string("this kind of file holds ") +
                (kind_.widest_fit == EMathTransformType::Projective ? "a projective" : "an affine") +
                " transform alone, not the fit " + NameOf(type));
    if (terms && !kind_.rotation && (terms->b != 0.0 || terms->d != 0.0))
        Add(DiagnosticId::kLostRotation, "this kind of file holds no rotation");
    FindInDigits();
}

double Rounding(double value, int decimals) {
    const double rounded = ParseDouble(PrintFixed(value, decimals));
    return std::fabs(rounded - value);
}

/// What numbers with few decimals cost at the corner that is the farthest from the origin.
void LossFinder::FindInDigits() {
    constexpr double kNoticeable = 0.001;
    if (kind_.decimals <= 0) return;
    const auto w = static_cast<double>(options_.GetWidth());
    const auto h = static_cast<double>(options_.GetHeight());
    BMathTransform::Slopes s{};
    if (!reference_.MathTransform->GetSlopes(w / 2, h / 2, s)) return;
    const double pixel = std::sqrt(std::fabs(s.XByColumn * s.YByRow - s.XByRow * s.YByColumn));
    const double last_digit = std::pow(10.0, -kind_.decimals) / 2;
    double drift = last_digit;
    if (!kind_.points)
        drift = std::max(w * Rounding(s.XByColumn, kind_.scale_decimals) +
                             h * Rounding(s.XByRow, kind_.scale_decimals),
                         w * Rounding(s.YByColumn, kind_.scale_decimals) +
                             h * Rounding(s.YByRow, kind_.scale_decimals)) +
                last_digit;
    if (!(pixel > 0.0) || !(drift / pixel > kNoticeable)) return;
    Add(DiagnosticId::kLostDigits, "the numbers are saved with " + std::to_string(kind_.decimals) +
                                       " decimals, which moves the far corner by up to " +
                                       PrintFixed(drift / pixel, 3) + " pixels");
}

void LossFinder::FindInVerticalUnit() {
    if (!reference_.HasVerticalUnit() || KeepsPart(kind_.vertical_unit, options_, kind_)) return;
    Add(DiagnosticId::kLostVerticalUnit,
        kind_.vertical_unit == Keeps::ByType
            ? "the vertical unit is not saved: a GeoTIFF takes it by type alone, see --to tif"
            : "the vertical unit is not saved: this kind of file has no place for it");
}

void LossFinder::FindLacks() {
    if (kind_.names_image && options_.GetImageName().IsEmpty())
        Add(DiagnosticId::kRasterUnnamed, "the file names no raster: --image NAME gives it one");
    if (kind_.states_size && options_.GetWidth() <= 0)
        Add(DiagnosticId::kRasterSizeUnstated,
            "the file says 0 by 0 pixels: --size WxH gives the raster's size");
}

}  // namespace

std::vector<BDiagnostic> FindSavingLosses(const ReferenceFormat& kind, const BGeoReference& reference,
                                          const BSavingOptions& options) {
    return LossFinder(kind, reference, options).Find();
}

}  // namespace MapAnchor
