#include "check/ViewportRules.h"

#include "common/policy/DiagnosticIds.h"
#include "wide/GradSystem.h"

#include <Tellurion/BCoordSys.h>
#include <Tellurion/BException.h>
#include <Tellurion/Numbers.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace MapAnchor {

using Tellurion::BCoordSys;
using Tellurion::BString;
using VellumLib::WidePage;
using VellumLib::WideValue;

namespace {

using Pairs = std::vector<std::pair<double, double>>;
constexpr auto kError = BDiagnostic::ESeverity::Error;
constexpr auto kWarning = BDiagnostic::ESeverity::Warning;

std::string Quoted(std::string_view key) {
    return std::string("\"").append(key).append("\"");
}

class ViewportCheck {
public:
    ViewportCheck(const WidePage& page, const WideValue& viewport, const Finding& found)
        : page_(page), viewport_(viewport), measure_(viewport["Measure"]), found_(found) {}

    void Run() {
        if (!viewport_["Measure"]) return;
        if (!measure_.IsDictionary())
            return Error(DiagnosticId::kPdfKeyType, "\"Measure\" is not a dictionary", "Measure");
        if (measure_["Subtype"].Text() != "GEO") return;
        CheckNames();
        CheckBox();
        CheckSystem();
        CheckBounds();
        CheckPoints();
        CheckUnits();
    }

private:
    void Error(const char* id, const std::string& text, const std::string& key) {
        found_(kError, id, text, key);
    }
    void Warn(const char* id, const std::string& text, const std::string& key) {
        found_(kWarning, id, text, key);
    }

    void RequireName(const WideValue& holder, const char* key, std::string_view wanted) {
        const WideValue value = holder[key];
        if (value && !(value.IsName() && value.Text() == wanted))
            Error(DiagnosticId::kPdfKeyType,
                  Quoted(key) + " is expected to be the name " + std::string(wanted), key);
    }
    void CheckNames() {
        RequireName(viewport_, "Type", "Viewport");
        RequireName(measure_, "Type", "Measure");
        RequireName(measure_, "Subtype", "GEO");
    }

    /// Numbers that are written as such; nothing, with a finding, where one is not.
    std::optional<std::vector<double>> NumbersOf(const WideValue& holder, const char* key) {
        const WideValue array = holder[key];
        constexpr std::size_t kMaxNumbers = 100'000;
        std::vector<double> numbers;
        bool plain = array.IsArray() && array.Size() <= kMaxNumbers;
        for (std::size_t i = 0; plain && i < array.Size(); ++i) {
            const auto number = array.At(i).IsNumber() ? array.At(i).Number() : std::nullopt;
            plain = number.has_value();
            numbers.push_back(number.value_or(0.0));
        }
        if (plain) return numbers;
        Error(DiagnosticId::kPdfKeyType, Quoted(key) + " is expected to be an array of numbers", key);
        return std::nullopt;
    }

    void CheckBox() {
        if (!viewport_["BBox"])
            return Error(DiagnosticId::kPdfKeyMissing, "the viewport has no \"BBox\"", "BBox");
        const auto numbers = NumbersOf(viewport_, "BBox");
        if (!numbers) return;
        if (numbers->size() != 4)
            return Error(DiagnosticId::kPdfBox, "\"BBox\" is expected to hold four numbers", "BBox");
        const auto [left, right] = std::minmax((*numbers)[0], (*numbers)[2]);
        const auto [bottom, top] = std::minmax((*numbers)[1], (*numbers)[3]);
        turns_ = ((*numbers)[0] > (*numbers)[2]) != ((*numbers)[1] > (*numbers)[3]);
        if (left == right || bottom == top)
            return Error(DiagnosticId::kPdfBox, "\"BBox\" has no extent", "BBox");
        constexpr double kRounding = 0.5;  // of a point, by which boxes of pages are rounded
        const auto& media = page_.media;
        if (media && (left < (*media)[0] - kRounding || bottom < (*media)[1] - kRounding ||
                      right > (*media)[2] + kRounding || top > (*media)[3] + kRounding))
            Warn(DiagnosticId::kPdfBox, "\"BBox\" reaches beyond the media box of the page", "BBox");
    }

    std::unique_ptr<BCoordSys> SystemOf(const BString& text, bool is_code) {
        try {
            return std::unique_ptr<BCoordSys>(is_code ? BCoordSys::FromEPSGCode(text)
                                                      : BCoordSys::FromWKT(text));
        } catch (const Tellurion::BException&) {
            return nullptr;
        }
    }

    void CheckSystem() {
        const WideValue gcs = measure_["GCS"];
        if (!gcs) return Error(DiagnosticId::kPdfKeyMissing, "the measure has no \"GCS\"", "GCS");
        if (!gcs.IsDictionary())
            return Error(DiagnosticId::kPdfKeyType, "\"GCS\" is not a dictionary", "GCS");
        const auto type = gcs["Type"].Text();
        if (!gcs["Type"].IsName() || (type != "GEOGCS" && type != "PROJCS"))
            Error(DiagnosticId::kPdfSystem, "the \"Type\" of \"GCS\" is neither GEOGCS nor PROJCS",
                  "GCS/Type");
        const WideValue code = gcs["EPSG"];
        const WideValue text = gcs["WKT"];
        if (!code && !text)
            return Error(DiagnosticId::kPdfKeyMissing, "\"GCS\" has neither \"EPSG\" nor \"WKT\"", "GCS");
        std::unique_ptr<BCoordSys> by_code;
        if (code && !code.IsWhole())
            Error(DiagnosticId::kPdfKeyType, "\"EPSG\" is not a whole number", "GCS/EPSG");
        else if (code)
            by_code = SystemOf(BString::Format("%.0f", code.Number().value_or(0.0)), true);
        if (code && code.IsWhole() && !by_code)
            Error(DiagnosticId::kPdfSystem, "the \"EPSG\" code of \"GCS\" is not known", "GCS/EPSG");
        if (text) system_ = SystemOf(BString(text.Text().value_or("")), false);
        if (text && !system_)
            Error(DiagnosticId::kPdfSystem, "the \"WKT\" of \"GCS\" cannot be read", "GCS/WKT");
        if (system_ && by_code) CompareSystems(*system_, *by_code);
        if (system_ && type && *type != KindOf(*system_))
            Error(DiagnosticId::kPdfSystem,
                  "the \"Type\" of \"GCS\" is " + *type + ", and its text is a " + KindOf(*system_),
                  "GCS/Type");
        if (!system_) system_ = std::move(by_code);
    }
    static std::string KindOf(const BCoordSys& system) {
        return system.GetKind() == BCoordSys::kKindProjected ? "PROJCS" : "GEOGCS";
    }
    void CompareSystems(const BCoordSys& by_text, const BCoordSys& by_code) {
        constexpr double kSame = 1.0;  // metre
        if (by_text.IsSame(by_code)) return;
        const double metres = by_text.DistanceTo(by_code);
        if (metres <= kSame) return;
        std::string text = "\"WKT\" and \"EPSG\" of \"GCS\" are different systems, " +
                           by_text.GetName().StdStr() + " and " + by_code.GetName().StdStr();
        if (std::isfinite(metres))
            text.append(", up to ").append(Tellurion::PrintFixed(metres, 1)).append(" m apart");
        Error(DiagnosticId::kPdfSystemsDiffer, text, "GCS");
    }

    std::optional<Pairs> PairsOf(const char* key) {
        const auto numbers = NumbersOf(measure_, key);
        if (!numbers) return std::nullopt;
        if (numbers->size() % 2 != 0)
            Error(DiagnosticId::kPdfPoints, Quoted(key) + " is expected to hold pairs of numbers", key);
        Pairs pairs;
        for (std::size_t i = 0; i + 1 < numbers->size(); i += 2)
            pairs.emplace_back((*numbers)[i], (*numbers)[i + 1]);
        return pairs;
    }
    void CheckUnitSquare(const Pairs& pairs, const char* key) {
        constexpr double kRounding = 1e-6;
        const auto beyond = [](double value) { return value < -kRounding || value > 1.0 + kRounding; };
        if (std::ranges::any_of(pairs, [&](const auto& p) { return beyond(p.first) || beyond(p.second); }))
            Error(DiagnosticId::kPdfUnitSquare, Quoted(key) + " has points outside the unit square", key);
    }
    void CheckBounds() {
        if (!measure_["Bounds"]) return;
        if (const auto bounds = PairsOf("Bounds")) CheckUnitSquare(*bounds, "Bounds");
    }

    void CheckPoints() {
        if (!measure_["GPTS"])
            return Error(DiagnosticId::kPdfKeyMissing, "the measure has no \"GPTS\"", "GPTS");
        const auto ground = PairsOf("GPTS");
        if (ground) CheckRange(*ground);
        if (!measure_["LPTS"]) return;
        const auto local = PairsOf("LPTS");
        if (local) CheckUnitSquare(*local, "LPTS");
        if (!ground || !local) return;
        if (ground->size() != local->size())
            return Error(DiagnosticId::kPdfPoints, "\"GPTS\" and \"LPTS\" hold different numbers of points",
                         "LPTS");
        CheckTurn(*ground, *local);
    }
    void CheckRange(const Pairs& ground) {
        constexpr double kPole = 90.0;
        const double unit = system_ && CountsInGrads(*system_) ? 1.0 / kDegreesOfGrad : 1.0;
        double latitude = 0.0;
        double longitude = 0.0;
        for (const auto& [first, second] : ground) {
            latitude = std::fmax(latitude, std::fabs(first) / unit);
            longitude = std::fmax(longitude, std::fabs(second) / unit);
        }
        constexpr double kRounding = 1e-9;
        if (latitude > kPole + kRounding)
            Error(DiagnosticId::kPdfPoints,
                  longitude <= kPole ? "\"GPTS\" has latitudes beyond 90 degrees: longitude is probably first"
                                     : "\"GPTS\" has latitudes beyond 90 degrees",
                  "GPTS");
        else if (longitude > 2 * kPole + kRounding)
            Warn(DiagnosticId::kPdfPoints, "\"GPTS\" has longitudes beyond 180 degrees", "GPTS");
    }
    /// Up on the page is not always north, but left and right are never exchanged.
    void CheckTurn(const Pairs& ground, const Pairs& local) {
        constexpr std::size_t kFewest = 3;
        if (ground.size() < kFewest)
            return Error(DiagnosticId::kPdfPoints, "fewer than three points do not place the map", "GPTS");
        std::array<double, 4> mean{};
        const double count = static_cast<double>(ground.size());
        const auto east = [&](std::size_t i) {
            return ground[0].second + std::remainder(ground[i].second - ground[0].second, 360.0);
        };
        for (std::size_t i = 0; i < ground.size(); ++i) {
            mean[0] += local[i].first / count;
            mean[1] += local[i].second / count;
            mean[2] += east(i) / count;
            mean[3] += ground[i].first / count;
        }
        std::array<double, 4> cross{};
        std::array<double, 3> own{};
        for (std::size_t i = 0; i < ground.size(); ++i) {
            const double u = local[i].first - mean[0];
            const double v = local[i].second - mean[1];
            const double x = east(i) - mean[2];
            const double y = ground[i].first - mean[3];
            cross = {cross[0] + x * u, cross[1] + x * v, cross[2] + y * u, cross[3] + y * v};
            own = {own[0] + u * u, own[1] + u * v, own[2] + v * v};
        }
        constexpr double kFlat = 1e-12;
        const double spread = own[0] * own[2] - own[1] * own[1];
        if (!(spread > kFlat))
            return Error(DiagnosticId::kPdfPoints, "the points of \"LPTS\" are on a line", "LPTS");
        const double turn = cross[0] * cross[3] - cross[1] * cross[2];
        if (turns_ ? turn > 0.0 : turn < 0.0)
            Error(DiagnosticId::kPdfMirrored,
                  "the points mirror the map: latitude and longitude, or the axes of \"LPTS\", are exchanged",
                  "GPTS");
    }

    void CheckUnits() {
        const WideValue units = measure_["PDU"];
        if (!units) return;
        static constexpr std::array<std::array<std::string_view, 6>, 3> kKnown = {
            {{"M", "KM", "FT", "USFT", "MI", "NM"},
             {"SQM", "HA", "SQKM", "SQFT", "A", "SQMI"},
             {"DEG", "GRD", "", "", "", ""}}};
        bool known = units.IsArray() && units.Size() == kKnown.size();
        for (std::size_t i = 0; known && i < kKnown.size(); ++i) {
            const auto name = units.At(i).Text();
            known = units.At(i).IsName() && name && !name->empty() &&
                    std::ranges::find(kKnown[i], std::string_view(*name)) != kKnown[i].end();
        }
        if (!known)
            Error(DiagnosticId::kPdfKeyType,
                  "\"PDU\" is expected to hold the names of a linear, an area and an angular unit", "PDU");
    }

    const WidePage& page_;
    const WideValue viewport_;
    const WideValue measure_;
    const Finding& found_;
    std::unique_ptr<BCoordSys> system_;
    bool turns_ = false;  ///< the corners of "BBox" exchange left and right
};

}  // namespace

void CheckViewport(const WidePage& page, const WideValue& viewport, const Finding& found) {
    ViewportCheck(page, viewport, found).Run();
}

}  // namespace MapAnchor
