#include "render/JsonRenderer.h"

#include "read/AffineOf.h"
#include "read/ReferenceFacts.h"
#include "read/Residuals.h"
#include "render/PdfPageJson.h"
#include "render/SystemTexts.h"

#include <MapAnchor/BReferenceFormats.h>
#include <Tellurion/BLinearUnit.h>
#include <Tellurion/Printable.h>

#include <charconv>
#include <cmath>
#include <memory>
#include <string_view>

namespace Tool {

using namespace Tellurion;

namespace {

/// Absent means absent: what JSON cannot tell is left out.
void PutNumber(Json& object, const char* key, double value) {
    if (std::isfinite(value)) object[key] = value;
}

void PutText(Json& object, const char* key, const BString& text) {
    if (!text.IsEmpty()) object[key] = text.StdStr();
}

/// GDAL's order, anchored at the outer corner of the top left pixel.
Json GeoTransform(const std::array<double, 6>& t, bool centre_anchored) {
    const double half = centre_anchored ? 0.5 : 0.0;
    const double c = t[2] - half * t[0] - half * t[1];
    const double f = t[5] - half * t[3] - half * t[4];
    return Json::array({c, t[0], t[1], f, t[3], t[4]});
}

/// A whole pixel without a decimal point.
Json PixelJson(double position) {
    constexpr double kWhole = 1e15;
    if (position == std::trunc(position) && std::fabs(position) < kWhole)
        return static_cast<long long>(position);
    return position;
}

Json GcpJson(const BControlPoint& point) {
    Json gcp = {
        {"id", point.Name.StdStr()}, {"pixel", PixelJson(point.Column)}, {"line", PixelJson(point.Row)}};
    PutNumber(gcp, "x", point.World.x);
    PutNumber(gcp, "y", point.World.y);
    PutNumber(gcp, "z", point.World.z);
    return gcp;
}

Json PointJson(const BControlPoint& point, const BFitResidual& residual) {
    Json json = {
        {"name", point.Name.StdStr()}, {"column", PixelJson(point.Column)}, {"row", PixelJson(point.Row)}};
    PutNumber(json, "x", point.World.x);
    PutNumber(json, "y", point.World.y);
    PutNumber(json, "z", point.World.z);
    json["enabled"] = point.Enabled;
    if (!residual.HasResidual) return json;
    PutNumber(json, "dxPixels", residual.DxPixels);
    PutNumber(json, "dyPixels", residual.DyPixels);
    PutNumber(json, "residualPixels", residual.ResidualPixels);
    return json;
}

Json Transform(const BMathTransform& transform, const Residuals& residuals) {
    const EMathTransformType type = transform.GetMathTransformType();
    Json json = {{"type", static_cast<int>(type)}, {"name", WordFor(type)}};
    if (residuals.root_mean_square) PutNumber(json, "rmsePixels", *residuals.root_mean_square);
    if (residuals.adjusted) PutNumber(json, "rmseAdjustedPixels", *residuals.adjusted);
    if (residuals.maximum) PutNumber(json, "maxPixels", *residuals.maximum);
    return json;
}

Json OriginsJson(const ReadResult& result) {
    Json list = Json::array();
    for (const auto& origin : result.origins) {
        Json json = {{"value", origin.Value.StdStr()}};
        PutText(json, "file", origin.File);
        PutText(json, "place", origin.Place);
        list.push_back(std::move(json));
    }
    return list;
}

enum class Systems { Now, Later };

/// With Systems::Later the objects of the system stay empty.
void PutSystem(Json& top, Json& ours, const BCoordSys& system, Systems when) {
    const bool now = when == Systems::Now;
    if (Json wkt = now ? WktJson(system) : Json::object(); !wkt.is_null())
        top["coordinateSystem"] = std::move(wkt);
    ours["coordSys"] = now ? RenderJson(system) : Json::object();
}

/// The lists of control points stay empty.
void PutReference(Json& top, Json& ours, const ReadResult& result, const Residuals& residuals, Systems when) {
    const BGeoReference& reference = result.reference;
    if (const auto affine = AffineOf(reference)) {
        const auto& t = *affine;
        top["geoTransform"] = GeoTransform(t, result.centre_anchored);
        ours["affine"] = {{"a", t[0]}, {"b", t[1]}, {"c", t[2]}, {"d", t[3]}, {"e", t[4]}, {"f", t[5]}};
        ours["pixelAnchor"] = result.centre_anchored ? "centre" : "corner";
    }
    if (reference.HasMathTransform()) ours["transform"] = Transform(*reference.MathTransform, residuals);
    if (reference.HasCoordSys()) PutSystem(top, ours, *reference.CoordSys, when);
    if (!reference.PointPairVector.empty()) {
        top["gcps"] = {{"gcpList", Json::array()}};
        ours["points"] = Json::array();
    }
    if (const BSharedPtr<BLinearUnit> unit = reference.GetVerticalUnit())
        ours["verticalUnit"] = {{"name", unit->GetName().StdStr()},
                                {"unitsPerMetre", unit->GetUnitsPerMeter()}};
    ours["pixelIsPoint"] = reference.IsPixelAsPointRegistered();
}

Json JsonWithoutPoints(const ReadResult& result, const Residuals& residuals, Systems when = Systems::Now) {
    Json top = JsonAbout(result.file);
    Json ours = {{"schemaVersion", kSchemaVersion}, {"ok", result.Ok()}};
    if (result.failure) {
        ours["error"] = RenderJson(*result.failure);
    } else {
        if (result.width) top["size"] = {*result.width, *result.height};
        if (!result.kind.empty()) ours["referenceType"] = result.kind;
        ours["road"] = result.road == Road::Name ? "name" : "type";
        ours["usedFile"] = result.used_file;
        ours["files"] = result.files;
        if (!result.origins.empty()) ours["origins"] = OriginsJson(result);
        PutReference(top, ours, result, residuals, when);
    }
    if (result.page) {
        ours["pdfPage"] = PdfPageJson(*result.page);
        ours["pdfPage"]["number"] = result.page_number;
    }
    ours["diagnostics"] = RenderJson(result.diagnostics);
    top["mapanchor"] = std::move(ours);
    return top;
}

std::string DumpedJson(const Json& json, const CommonOptions& options) {
    return PrintableJson(json.dump(options.indent, ' ', false, Json::error_handler_t::replace));
}

/// Passes a text of JSON on and fills the empty objects and lists in it, these entry by entry: as
/// one tree they would need a hundred times the memory of the points.
class ListFiller {
public:
    ListFiller(std::string_view text, const CommonOptions& options, const TextPieces::Write& write)
        : rest_(text), options_(options), out_(write) {}

    /// The next list of that name, which is two levels below the top.
    template <class EntryOf>
    void Fill(const std::string& name, std::size_t count, EntryOf entry_of) {
        constexpr int kListLevel = 2;
        // A quote within a text has a backslash before it, so that this is no text.
        const std::string list = '"' + name + (options_.indent < 0 ? "\":[]" : "\": []");
        const std::size_t end = rest_.find(list) + list.size() - 1;
        out_.Text() += rest_.substr(0, end);
        rest_.remove_prefix(end);
        const std::string line = LineEnd(kListLevel + 1);
        for (std::size_t i = 0; i < count; ++i) {
            out_.Text() += i == 0 ? line : ',' + line;
            AppendWithLineEnds(DumpedJson(entry_of(i), options_), line);
            out_.PassOn();
        }
        out_.Text() += LineEnd(kListLevel);
    }
    /// The next object of that name, which is empty and on one line.
    void FillObject(const char* name, std::string_view text) {
        const std::string object = std::string("\"").append(name).append("\":{}");
        const std::size_t end = rest_.find(object) + object.size() - 2;
        out_.Text().append(rest_.substr(0, end)).append(text);
        rest_.remove_prefix(end + 2);
    }
    void Finish() {
        out_.Text() += rest_;
        out_.Finish();
    }

private:
    std::string LineEnd(int level) const {
        return options_.indent < 0
                   ? ""
                   : '\n' + std::string(static_cast<std::size_t>(level * options_.indent), ' ');
    }
    void AppendWithLineEnds(const std::string& entry, const std::string& line) {
        if (line.empty()) {
            out_.Text() += entry;
            return;
        }
        for (const char c : entry)
            if (c == '\n')
                out_.Text() += line;
            else
                out_.Text() += c;
    }

    std::string_view rest_;
    const CommonOptions& options_;
    TextPieces out_;
};

constexpr const char* kDescription = "description";
constexpr const char* kDescriptionBytes = "descriptionBytes";

bool StaysInUri(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
           std::string_view("/-._~").find(c) != std::string_view::npos;
}

std::string FromPercent(const std::string& text) {
    constexpr std::size_t kLength = 3;  // of "%E9"
    std::string bytes;
    for (std::size_t i = 0; i < text.size();) {
        unsigned char byte = 0;
        const char* const digits = text.data() + i + 1;
        const bool is_byte = text[i] == '%' && i + kLength <= text.size() &&
                             std::from_chars(digits, digits + 2, byte, 16).ptr == digits + 2;
        bytes += is_byte ? static_cast<char>(byte) : text[i];
        i += is_byte ? kLength : 1;
    }
    return bytes;
}

}  // namespace

std::string PercentText(const std::string& name) {
    constexpr const char* kDigits = "0123456789ABCDEF";
    std::string text;
    for (const char c : name) {
        const auto byte = static_cast<unsigned char>(c);
        text +=
            StaysInUri(c) ? std::string(1, c) : std::string{'%', kDigits[byte >> 4U], kDigits[byte & 15U]};
    }
    return text;
}

std::string JsonSchema() {
    const std::string field = R"("referenceType": {"enum": [)";
    std::string kinds;
    for (const auto& format : MapAnchor::BReferenceFormats::List())
        kinds += (kinds.empty() ? "\"" : ", \"") + format.GetName().StdStr() + "\"";
    std::string schema = kJsonSchema;
    return schema.insert(schema.find(field) + field.size(), kinds);
}

Json JsonAbout(const std::string& name) {
    Json json = {{kDescription, name}};
    if (!IsUtf8(name)) json[kDescriptionBytes] = PercentText(name);
    return json;
}

std::optional<std::string> NameIn(const Json& row) {
    if (!row.is_object()) return std::nullopt;
    for (const char* key : {kDescriptionBytes, kDescription})
        if (row.contains(key) && row[key].is_string()) {
            const std::string text = row[key].get<std::string>();
            return key == kDescription ? text : FromPercent(text);
        }
    return std::nullopt;
}

namespace {

Json PartJson(const BCoordSys& part) {
    Json json = Json::object();
    PutText(json, "name", part.GetName());
    PutText(json, "epsg", part.ToEPSGCode());
    return json;
}

/// The two parts of a compound system.
void PutParts(Json& json, const BCoordSys& system) {
    const std::unique_ptr<BCoordSys> vertical(system.GetVerticalCoordSys());
    const std::unique_ptr<BCoordSys> horizontal(vertical ? system.GetBaseCoordSys() : nullptr);
    if (!horizontal) return;
    json["horizontal"] = PartJson(*horizontal);
    json["vertical"] = PartJson(*vertical);
}

}  // namespace

Json WktJson(const BCoordSys& system) {
    const BString wkt = system.ToWholeWKT();
    return wkt.IsEmpty() ? Json() : Json{{"wkt", wkt.StdStr()}};
}

Json RenderJson(const BCoordSys& system) {
    Json json = Json::object();
    PutText(json, "name", system.GetName());
    json["kind"] = WordForKind(system);
    PutText(json, "epsg", system.ToEPSGCode());
    PutParts(json, system);
    if (const double epoch = system.GetCoordinateEpoch(); epoch != 0.0) PutNumber(json, "epoch", epoch);
    const BSharedPtr<BUnit> unit = system.GetUnits();
    if (!unit) return json;
    PutText(json, "units", unit->GetName());
    if (unit->IsLinear()) PutNumber(json, "unitsPerMetre", unit->GetUnitsPerBase());
    return json;
}

Json RenderJson(const Failure& failure) {
    Json json = {{"type", failure.type}, {"class", WordFor(failure.kind)}};
    for (const auto& [key, text] : {std::pair<const char*, const std::string&>{"message", failure.message},
                                    {"source", failure.source},
                                    {"detail", failure.detail}})
        if (!text.empty()) json[key] = text;
    return json;
}

Json RenderJson(const Diagnostics& diagnostics) {
    Json list = Json::array();
    for (const Diagnostic& diagnostic : diagnostics) {
        Json remark = {{"severity", diagnostic.Severity()}, {"text", diagnostic.text}};
        for (const auto& [key, text] : {std::pair<const char*, const std::string&>{"id", diagnostic.id},
                                        {"file", diagnostic.file},
                                        {"place", diagnostic.place}})
            if (!text.empty()) remark[key] = text;
        list.push_back(std::move(remark));
    }
    return list;
}

Json JsonWithoutPoints(const ReadResult& result) {
    return JsonWithoutPoints(result, ComputeResiduals(result));
}

Json PointsJson(const ReadResult& result) {
    const Residuals residuals = ComputeResiduals(result);
    Json list = Json::array();
    for (std::size_t i = 0; i < residuals.points.size(); ++i)
        list.push_back(PointJson(residuals.points[i], residuals.of_points[i]));
    return list;
}

void WriteJson(const ReadResult& result, const CommonOptions& options, const TextPieces::Write& write) {
    const Residuals residuals = ComputeResiduals(result);
    const std::vector<BControlPoint>& points = residuals.points;
    // On one line, the texts of the system are those of the file before.
    const SystemTexts* const system = result.Ok() && result.reference.HasCoordSys() && options.indent < 0
                                          ? &SystemTextsOf(*result.reference.CoordSys)
                                          : nullptr;
    const bool later = system && !system->in_wkt.empty();
    const std::string text =
        ToText(JsonWithoutPoints(result, residuals, later ? Systems::Later : Systems::Now), options);
    ListFiller filler(text, options, write);
    const bool has_points = result.Ok() && !points.empty();
    if (later) filler.FillObject("coordinateSystem", system->in_wkt);
    if (has_points) filler.Fill("gcpList", points.size(), [&](std::size_t i) { return GcpJson(points[i]); });
    if (later) filler.FillObject("coordSys", system->described);
    if (has_points)
        filler.Fill("points", points.size(),
                    [&](std::size_t i) { return PointJson(points[i], residuals.of_points[i]); });
    filler.Finish();
}

std::string ToText(const Json& json, const CommonOptions& options) {
    return DumpedJson(json, options) + "\n";
}

}  // namespace Tool
