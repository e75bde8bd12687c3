#include "Module.h"

#include <pybind11/operators.h>

#include <Tellurion/BIdentifier.h>
#include <Tellurion/BLinearUnit.h>

#include <algorithm>
#include <cmath>
#include <string>

namespace py = pybind11;
using namespace Tellurion;

namespace {

using Points = std::vector<BPointPair>;

std::optional<BCoordSys> SystemOf(const PyReference& self) {
    if (!self.reference.HasCoordSys()) return std::nullopt;
    return *self.reference.CoordSys;
}

void SetSystem(PyReference& self, const py::object& from) {
    const std::optional<BCoordSys> system = OptionalSystemFrom(from);
    self.reference.SetCoordSys(system ? BSharedPtr<BCoordSys>(new BCoordSys(*system))
                                      : BSharedPtr<BCoordSys>());
}

/// A Transform or what has six terms.
std::optional<PyTransform> TransformFrom(const py::object& from) {
    if (from.is_none()) return std::nullopt;
    if (py::isinstance<PyTransform>(from)) return from.cast<PyTransform>();
    return PyTransform(AffineFrom(from));
}

std::optional<std::pair<BString, double>> VerticalUnit(const PyReference& self) {
    const BSharedPtr<BLinearUnit> unit = self.reference.GetVerticalUnit();
    if (!unit) return std::nullopt;
    return std::make_pair(unit->GetName(), unit->GetUnitsPerMeter());
}

PyReference MakeReference(const py::object& system, const py::object& transform, const Points& points) {
    PyReference made;
    SetSystem(made, system);
    SetTransform(made, TransformFrom(transform));
    made.reference.PointPairVector = points;
    return made;
}

std::string Show(const PyReference& self) {
    const BGeoReference& reference = self.reference;
    std::string text = "<mapanchor.Reference";
    if (!self.kind.IsEmpty()) text += " " + self.kind.StdStr();
    if (reference.HasCoordSys()) text += ", " + reference.CoordSys->GetName().StdStr();
    if (reference.HasMathTransform()) text += ", with a transform";
    if (self.width > 0) text += ", " + std::to_string(self.width) + " x " + std::to_string(self.height);
    return text + ", " + std::to_string(reference.PointPairVector.size()) + " points>";
}

bool HaveSameUnit(const PyReference& a, const PyReference& b) {
    constexpr double kRounding = 1e-12;  // a unit is kept by its inverse
    const auto one = VerticalUnit(a);
    const auto other = VerticalUnit(b);
    if (!one || !other) return one.has_value() == other.has_value();
    return one->first == other->first && std::fabs(one->second - other->second) <= kRounding * one->second;
}

/// By where they put a raster, not by the file that they were read from.
bool AreSame(const PyReference& a, const PyReference& b) {
    const BGeoReference& one = a.reference;
    const BGeoReference& other = b.reference;
    const auto transform_a = TransformOf(a);
    const auto transform_b = TransformOf(b);
    if (one.HasCoordSys() != other.HasCoordSys() || transform_a.has_value() != transform_b.has_value() ||
        one.IsPixelAsPointRegistered() != other.IsPixelAsPointRegistered() || !HaveSameUnit(a, b) ||
        a.centre_anchored != b.centre_anchored || a.width != b.width || a.height != b.height)
        return false;
    const Points& points = one.PointPairVector;
    const Points& others = other.PointPairVector;
    return std::equal(points.begin(), points.end(), others.begin(), others.end(),
                      [](const BPointPair& p, const BPointPair& q) { return AreSamePoints(p, q); }) &&
           (!transform_a || AreSameTransforms(*transform_a, *transform_b)) &&
           (!one.HasCoordSys() || one.CoordSys->IsSame(*other.CoordSys));
}

/// Issuer and code, or name and metres.
py::object UnitState(const PyReference& self) {
    const BSharedPtr<BLinearUnit> unit = self.reference.GetVerticalUnit();
    BIdentifier known;
    if (!unit) return py::none();
    if (unit->GetIdentifier("GC", known)) return py::make_tuple("GC", known.Code);
    return py::make_tuple(unit->GetName(), 1.0 / unit->GetUnitsPerMeter());
}

BSharedPtr<BLinearUnit> UnitFrom(const py::object& state) {
    if (state.is_none()) return {};
    const py::tuple parts = state;
    const auto name = parts[0].cast<BString>();
    if (py::isinstance<py::str>(parts[1]))
        return BLinearUnit::GetLinearUnit(BIdentifier(name, parts[1].cast<BString>()));
    return BSharedPtr<BLinearUnit>(new BLinearUnit(name, parts[1].cast<double>()));
}

py::dict StateOf(const PyReference& self) {
    using namespace py::literals;
    return py::dict("crs"_a = SystemOf(self), "transform"_a = TransformOf(self),
                    "points"_a = self.reference.PointPairVector,
                    "pixel_is_point"_a = self.reference.IsPixelAsPointRegistered(),
                    "vertical_unit"_a = UnitState(self), "kind"_a = self.kind, "used_file"_a = self.used_file,
                    "files"_a = self.files, "centre_anchored"_a = self.centre_anchored,
                    "width"_a = self.width, "height"_a = self.height, "diagnostics"_a = self.diagnostics,
                    "origins"_a = self.origins);
}

PyReference FromState(const py::dict& state) {
    PyReference made = MakeReference(state["crs"], state["transform"], state["points"].cast<Points>());
    made.reference.SetPixelAsPointRegistered(state["pixel_is_point"].cast<bool>());
    made.reference.SetVerticalUnit(UnitFrom(state["vertical_unit"]));
    made.kind = state["kind"].cast<BString>();
    made.used_file = state["used_file"].cast<BString>();
    made.files = state["files"].cast<std::vector<BString>>();
    made.centre_anchored = state["centre_anchored"].cast<bool>();
    made.width = state["width"].cast<long>();
    made.height = state["height"].cast<long>();
    made.diagnostics = state["diagnostics"].cast<std::vector<PyDiagnostic>>();
    made.origins = state["origins"].cast<std::vector<MapAnchor::BReading::Origin>>();
    return made;
}

std::optional<std::pair<long, long>> SizeOf(const PyReference& self) {
    if (self.width <= 0 || self.height <= 0) return std::nullopt;
    return std::pair(self.width, self.height);
}

void SetSize(PyReference& self, const std::optional<std::pair<long, long>>& size) {
    if (size && (size->first <= 0 || size->second <= 0)) throw py::value_error("a size is positive");
    self.width = size ? size->first : 0;
    self.height = size ? size->second : 0;
}

/// From the outer corner of the raster, as rasterio counts.
py::object AffineOfPackage(const PyReference& self) {
    if (!self.reference.HasMathTransform()) throw py::value_error("there is no transform");
    return ToAffinePackage(*self.reference.MathTransform, self.centre_anchored ? -0.5 : 0.0);
}

void DefineParts(py::class_<PyReference>& reference) {
    const auto affine = [](const PyReference& self) {
        return self.reference.HasMathTransform() ? TermsOf(*self.reference.MathTransform)
                                                 : py::object(py::none());
    };
    reference.def_property("crs", &SystemOf, &SetSystem)
        .def_property(
            "transform", &TransformOf,
            [](PyReference& self, const py::object& from) { SetTransform(self, TransformFrom(from)); })
        .def_property("affine", affine,
                      [](PyReference& self, const py::object& terms) {
                          SetTransform(self, PyTransform(AffineFrom(terms)));
                      })
        .def_property(
            "points", [](const PyReference& self) { return self.reference.PointPairVector; },
            [](PyReference& self, const Points& points) { self.reference.PointPairVector = points; })
        .def_property(
            "pixel_is_point",
            [](const PyReference& self) { return self.reference.IsPixelAsPointRegistered(); },
            [](PyReference& self, bool value) { self.reference.SetPixelAsPointRegistered(value); })
        .def_property("size", &SizeOf, &SetSize)
        .def_property_readonly("vertical_unit", &VerticalUnit)
        .def_property_readonly("kind", [](const PyReference& self) { return self.kind; })
        .def_property_readonly("used_file", [](const PyReference& self) { return self.used_file; })
        .def_property_readonly("files", [](const PyReference& self) { return self.files; })
        .def_property_readonly("diagnostics", [](const PyReference& self) { return self.diagnostics; })
        .def_property_readonly("origins", [](const PyReference& self) { return self.origins; })
        .def_property_readonly(
            "anchor", [](const PyReference& self) { return self.centre_anchored ? "centre" : "corner"; });
}

}  // namespace

std::optional<PyTransform> TransformOf(const PyReference& self) {
    if (!self.reference.HasMathTransform()) return std::nullopt;
    const auto* const known = dynamic_cast<const PyTransform*>(self.reference.MathTransform.Get());
    return known ? *known : PyTransform(*self.reference.MathTransform);
}

void SetTransform(PyReference& self, const std::optional<PyTransform>& transform) {
    self.reference.MathTransform = transform && transform->IsValid()
                                       ? BSharedPtr<BMathTransform>(new PyTransform(*transform))
                                       : BSharedPtr<BMathTransform>();
}

void DefineReference(py::module_& module) {
    py::class_<PyReference> reference(module, "Reference");
    reference.def(py::init(&MakeReference), py::arg("crs") = py::none(), py::arg("transform") = py::none(),
                  py::arg("points") = Points());
    DefineParts(reference);
    reference.def_property_readonly("bounds", &BoundsOf)
        .def_property_readonly("__geo_interface__", &FeatureOf)
        .def("footprint", &FootprintOf, py::kw_only(), py::arg("width") = 0, py::arg("height") = 0)
        .def("to_affine", &AffineOfPackage)
        .def(
            "__eq__", [](const PyReference& a, const PyReference& b) { return AreSame(a, b); },
            py::is_operator())
        .def("__repr__", &Show)
        .def(py::pickle(&StateOf, &FromState));
    reference.attr("__hash__") = py::none();  // it can be changed
}
