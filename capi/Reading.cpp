#include "Border.h"

#include "read/AffineOf.h"
#include "read/RasterFrame.h"
#include "render/JsonRenderer.h"

#include <MapAnchor/BMapAnchor.h>

#include <charconv>

namespace Border {

namespace {

using MapAnchor::BReading;
using Tellurion::EMathTransformType;

int32_t CodeOf(const std::string& epsg) {
    constexpr std::string_view kAuthority = "EPSG:";
    int32_t code = 0;
    if (epsg.starts_with(kAuthority)) {
        const char* const end = epsg.data() + epsg.size();
        const auto parsed = std::from_chars(epsg.data() + kAuthority.size(), end, code);
        if (parsed.ec != std::errc() || parsed.ptr != end) return 0;  // two codes, of a compound system
    }
    return code;
}

const char* TextOrNull(const std::string& text) {
    return text.empty() ? nullptr : text.c_str();
}

const SystemFacts& SystemIn(const mapanchor_reading& handle) {
    if (handle.system) return *handle.system;
    SystemFacts& system = handle.system.emplace();
    const Tellurion::BGeoReference& reference = handle.result.reference;
    if (!reference.HasCoordSys()) return system;
    system.wkt = reference.CoordSys->ToWholeWKT().StdStr();
    system.name = reference.CoordSys->GetName().StdStr();
    system.epsg = CodeOf(reference.CoordSys->ToEPSGCode().StdStr());
    return system;
}

mapanchor_reference ReferenceOf(const mapanchor_reading& handle) {
    const Tool::ReadResult& result = handle.result;
    mapanchor_reference known{};
    if (const auto affine = Tool::AffineOf(result.reference)) {
        known.has_affine = 1;
        std::copy(affine->begin(), affine->end(), known.affine);
    }
    known.pixel_anchor = result.centre_anchored ? MAPANCHOR_CENTRE : MAPANCHOR_CORNER;
    known.width = result.width.value_or(0);
    known.height = result.height.value_or(0);
    known.fit = result.reference.HasMathTransform()
                    ? static_cast<int32_t>(result.reference.MathTransform->GetMathTransformType())
                    : MAPANCHOR_FIT_NONE;
    const SystemFacts& system = SystemIn(handle);
    known.epsg = system.epsg;
    known.wkt = TextOrNull(system.wkt);
    known.crs_name = TextOrNull(system.name);
    known.kind = TextOrNull(result.kind);
    known.used_file = result.used_file.c_str();
    known.point_count = result.points.size();
    return known;
}

/// The reading, which must have a reference.
const Tool::ReadResult& ResultIn(const mapanchor_reading* reading) {
    const mapanchor_reading& handle = Needed(reading, "reading");
    if (handle.status != MAPANCHOR_OK) throw Refusal{handle.status, handle.error};
    return handle.result;
}

using Place = std::optional<Tool::Position> (*)(const Tool::ReadResult&, const Tool::Position&);

int Replace(const mapanchor_reading* reading, double* x, double* y, Place place, const char* what) noexcept {
    return Done([&] {
        const Tool::ReadResult& result = ResultIn(reading);
        const auto found = place(result, {Needed(x, "x"), Needed(y, "y")});
        if (!found)
            throw Refusal{MAPANCHOR_INVALID, result.file + ": the transform has no " + what + " there"};
        *x = found->x;
        *y = found->y;
    });
}

}  // namespace

long SideOf(int64_t pixels, const char* name) {
    constexpr int64_t kMaxSide = 0x7FFFFFFF;
    if (pixels < 0 || pixels > kMaxSide)
        throw Refusal{MAPANCHOR_BAD_ARGUMENT, std::string(name) + " is not from 0 to 2147483647"};
    return static_cast<long>(pixels);
}

Tool::ReadOptions ReadOptionsOf(const mapanchor_read_options* options) {
    const mapanchor_read_options given = Known(options, "options");
    Tool::ReadOptions read;
    read.pdf_list_pages = true;
    const long width = SideOf(given.width, "options.width");
    const long height = SideOf(given.height, "options.height");
    if (width > 0) read.width = width;
    if (height > 0) read.height = height;
    if (given.fit < MAPANCHOR_FIT_AFFINE || given.fit > MAPANCHOR_FIT_NONE)
        throw Refusal{MAPANCHOR_BAD_ARGUMENT, "options.fit is not a mapanchor_fit"};
    read.fit = static_cast<EMathTransformType>(given.fit);
    if (given.crs) read.crs = SystemOf(given.crs);
    read.overrides_crs = given.overrides_crs != 0;
    if (given.source) read.source = given.source;
    if (given.pdf_map) read.params.SetString(MapAnchor::BMapAnchor::kValPDFMap, given.pdf_map);
    if (given.pdf_password) read.params.SetString(MapAnchor::BMapAnchor::kValPDFPassword, given.pdf_password);
    if (given.pdf_page < 0) throw Refusal{MAPANCHOR_BAD_ARGUMENT, "options.pdf_page is less than 0"};
    if (given.pdf_page > 0) read.pdf_page = given.pdf_page;
    read.explains = given.explains != 0;
    if (given.pdf_resolution != 0.0) {
        if (!(given.pdf_resolution >= 1.0 && given.pdf_resolution <= 1e5))
            throw Refusal{MAPANCHOR_BAD_ARGUMENT, "options.pdf_resolution is not from 1 to 100000"};
        read.dpi = given.pdf_resolution;
    }
    return read;
}

mapanchor_reading* HandleOf(const BReading& reading, const std::string& name, int page) {
    auto handle = std::make_unique<mapanchor_reading>();
    handle->result = Tool::ResultOf(reading, name);
    handle->result.page_number = page;
    handle->status = StatusOf(reading.GetOutcome());
    if (handle->result.failure) handle->error = name + ": " + handle->result.failure->Text();
    return handle.release();
}

}  // namespace Border

using namespace Border;

extern "C" {

mapanchor_reading* mapanchor_read(const char* file, const mapanchor_read_options* options) {
    return Made([&] {
        const std::string name = &Needed(file, "file");
        const Tool::ReadOptions read = ReadOptionsOf(options);
        return HandleOf(MapAnchor::BReading::Of(Tellurion::BString(name), read.ForReading()), name,
                        read.pdf_page);
    });
}

int mapanchor_reading_status(const mapanchor_reading* reading) {
    return reading ? reading->status : Fail(MAPANCHOR_BAD_ARGUMENT, "reading is NULL");
}

const char* mapanchor_reading_error(const mapanchor_reading* reading) {
    return reading ? reading->error.c_str() : "";
}

char* mapanchor_reading_json(const mapanchor_reading* reading) {
    return Made([&] {
        std::string text;
        Tool::WriteJson(Needed(reading, "reading").result, Tool::CommonOptions(),
                        [&text](std::string_view piece) { text += piece; });
        return CopyOf(std::move(text));
    });
}

int mapanchor_reading_reference(const mapanchor_reading* reading, mapanchor_reference* reference) {
    return Done([&] {
        ResultIn(reading);
        Give(ReferenceOf(*reading), reference, "reference");
    });
}

int mapanchor_reading_point(const mapanchor_reading* reading, size_t index, mapanchor_point* point) {
    return Done([&] {
        const Tellurion::BControlPoint& found = At(ResultIn(reading).points, index, "control points");
        mapanchor_point known{};
        known.column = found.Column;
        known.row = found.Row;
        known.x = found.World.x;
        known.y = found.World.y;
        known.z = found.World.z;
        known.enabled = found.Enabled ? 1 : 0;
        known.name = found.Name.Utf8();
        Give(known, point, "point");
    });
}

size_t mapanchor_reading_diagnostic_count(const mapanchor_reading* reading) {
    return reading ? reading->result.diagnostics.size() : 0;
}

int mapanchor_reading_diagnostic(const mapanchor_reading* reading, size_t index,
                                 mapanchor_diagnostic* diagnostic) {
    return Done([&] { GiveDiagnostic(Needed(reading, "reading").result.diagnostics, index, diagnostic); });
}

int mapanchor_to_world(const mapanchor_reading* reading, double* x, double* y) {
    return Replace(reading, x, y, Tool::WorldAt, "position");
}

int mapanchor_to_pixel(const mapanchor_reading* reading, double* x, double* y) {
    return Replace(reading, x, y, Tool::PixelAt, "pixel");
}

void mapanchor_free_reading(mapanchor_reading* reading) {
    delete reading;
}
}
