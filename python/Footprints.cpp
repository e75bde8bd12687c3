#include "Module.h"

#include "read/RasterFrame.h"
#include "render/Footprint.h"

#include <algorithm>
#include <limits>
#include <string>

namespace py = pybind11;
using namespace Tellurion;

namespace {

/// The reference in the terms of the tool's footprints.
Tool::ReadResult ResultOf(const PyReference& self) {
    Tool::ReadResult result;
    result.reference = self.reference;
    result.centre_anchored = self.centre_anchored;
    if (self.width > 0 && self.height > 0) {
        result.width = self.width;
        result.height = self.height;
    }
    return result;
}

/// The outer edge in pixels; curved transforms need more than its corners.
std::vector<Tool::Position> EdgeOf(const Tool::RasterFrame& frame, bool is_affine) {
    const int steps = is_affine ? 1 : 256;
    std::vector<Tool::Position> edge;
    for (int i = 0; i <= steps; ++i) {
        const double part = static_cast<double>(i) / steps;
        for (const double side : {0.0, 1.0}) {
            edge.push_back(frame.At(part, side));
            edge.push_back(frame.At(side, part));
        }
    }
    return edge;
}

struct Area {
    std::optional<Tool::Footprint> footprint;
    std::string why_not;
};

Area AreaOf(const PyReference& self) {
    const py::gil_scoped_release released;
    Tool::ReadResult result = ResultOf(self);
    Area area{Tool::FootprintOf(result), {}};
    for (const Tool::Diagnostic& remark : result.diagnostics)
        area.why_not = remark.text;
    return area;
}

py::tuple ToPython(const std::vector<Tool::Position>& ring) {
    py::list positions;
    for (const Tool::Position& position : ring)
        positions.append(py::make_tuple(position.x, position.y));
    return positions;
}

py::dict ToPython(const Tool::Footprint& footprint) {
    py::list polygons;
    for (const auto& ring : footprint.rings)
        polygons.append(py::make_tuple(ToPython(ring)));
    py::dict geometry;
    const bool is_one = polygons.size() == 1;
    geometry["type"] = is_one ? "Polygon" : "MultiPolygon";
    geometry["coordinates"] = is_one ? py::object(polygons[0]) : py::object(py::tuple(polygons));
    return geometry;
}

bool HasSize(const PyReference& self) {
    return self.width > 0 && self.height > 0;
}

}  // namespace

std::optional<std::tuple<double, double, double, double>> BoundsOf(const PyReference& self) {
    if (!HasSize(self) || !self.reference.HasMathTransform()) return std::nullopt;
    const Tool::ReadResult result = ResultOf(self);
    constexpr double kFar = std::numeric_limits<double>::infinity();
    double west = kFar;
    double south = kFar;
    double east = -kFar;
    double north = -kFar;
    for (const Tool::Position& pixel :
         EdgeOf(Tool::FrameOf(result, self.width, self.height), IsAffine(*self.reference.MathTransform))) {
        const auto world = Tool::WorldAt(result, pixel);
        if (!world) return std::nullopt;
        west = std::min(west, world->x);
        east = std::max(east, world->x);
        south = std::min(south, world->y);
        north = std::max(north, world->y);
    }
    return std::tuple(west, south, east, north);
}

py::dict FootprintOf(const PyReference& self, long width, long height) {
    PyReference sized = self;
    if (width > 0 && height > 0) {
        sized.width = width;
        sized.height = height;
    }
    if (!HasSize(sized))
        throw py::value_error("there is no footprint: the raster's size is not known; give width and height");
    const Area area = AreaOf(sized);
    if (!area.footprint) throw py::value_error(area.why_not);
    return ToPython(*area.footprint);
}

py::dict FeatureOf(const PyReference& self) {
    const Area area = HasSize(self) ? AreaOf(self) : Area{};
    py::dict properties;
    properties["file"] = self.used_file;
    properties["kind"] = self.kind;
    const BString code = self.reference.HasCoordSys() ? self.reference.CoordSys->ToEPSGCode() : BString();
    properties["epsg"] = code.IsEmpty() ? py::object(py::none()) : py::cast(code);
    py::dict feature;
    feature["type"] = "Feature";
    feature["geometry"] = area.footprint ? py::object(ToPython(*area.footprint)) : py::object(py::none());
    if (area.footprint)
        feature["bbox"] = py::make_tuple(area.footprint->west, area.footprint->south, area.footprint->east,
                                         area.footprint->north);
    feature["properties"] = properties;
    return feature;
}
