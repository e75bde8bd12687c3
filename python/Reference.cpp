#include "Module.h"

#include <pybind11/stl.h>

#include <Tellurion/BCoordSys.h>
#include <Tellurion/BLinearUnit.h>
#include <Tellurion/BMathTransform.h>

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace py = pybind11;
using namespace Tellurion;

namespace {

using Terms = std::array<double, 6>;
using Position = std::pair<double, double>;
using Points = std::vector<BPointPair>;

BMathTransform Affine(const Terms& t) {
    const std::unique_ptr<BMathTransform> made(
        BMathTransform::CreateAffine(t[0], t[1], t[2], t[3], t[4], t[5], true));
    if (!made) throw py::value_error("these terms have no inverse");
    return *made;
}

/// A tuple of six, as Python users know a placement; None where it is no affine one.
py::object TermsOf(const BMathTransform& transform) {
    const EMathTransformType type = transform.GetMathTransformType();
    if (type != EMathTransformType::Affine && type != EMathTransformType::Conformal) return py::none();
    Terms t{};
    transform.GetAffineParameters(t[0], t[1], t[2], t[3], t[4], t[5]);
    return py::make_tuple(t[0], t[1], t[2], t[3], t[4], t[5]);
}

Position Convert(bool (BMathTransform::*convert)(double&, double&) const, const BMathTransform& transform,
                 double x, double y) {
    if (!(transform.*convert)(x, y)) throw py::value_error("the transform has no value there");
    return {x, y};
}

BCoordSys MakeSystem(const BString& text) {
    const std::unique_ptr<BCoordSys> made(BCoordSys::FromText(text));
    if (!made) throw py::value_error("the coordinate system is not understood");
    return *made;
}

std::optional<BString> NotEmpty(const BString& text) {
    return text.IsEmpty() ? std::nullopt : std::optional<BString>(text);
}

std::optional<BCoordSys> Optional(BCoordSys* made) {
    const std::unique_ptr<BCoordSys> owner(made);
    return owner ? std::optional<BCoordSys>(*owner) : std::nullopt;
}

/// The system itself unless it is a compound.
BCoordSys HorizontalOf(const BCoordSys& system) {
    const std::unique_ptr<BCoordSys> vertical(system.GetVerticalCoordSys());
    return vertical ? Optional(system.GetBaseCoordSys()).value_or(system) : system;
}

Position Geodetic(BPoint (BCoordSys::*convert)(const BPoint&) const, const BCoordSys& system, double x,
                  double y) {
    const BPoint point = (system.*convert)(BPoint(x, y, 0.0));
    return {point.x, point.y};
}

std::optional<BMathTransform> TransformOf(const PyReference& self) {
    if (!self.reference.HasMathTransform()) return std::nullopt;
    return *self.reference.MathTransform;
}

void SetTransform(PyReference& self, const std::optional<BMathTransform>& transform) {
    self.reference.MathTransform = BSharedPtr<BMathTransform>();
    if (transform) self.reference.SetMathTransform(*transform);
}

std::optional<BCoordSys> SystemOf(const PyReference& self) {
    if (!self.reference.HasCoordSys()) return std::nullopt;
    return *self.reference.CoordSys;
}

void SetSystem(PyReference& self, const std::optional<BCoordSys>& system) {
    self.reference.SetCoordSys(system ? BSharedPtr<BCoordSys>(new BCoordSys(*system))
                                      : BSharedPtr<BCoordSys>());
}

std::optional<std::pair<BString, double>> VerticalUnit(const PyReference& self) {
    const BSharedPtr<BLinearUnit> unit = self.reference.GetVerticalUnit();
    if (!unit) return std::nullopt;
    return std::make_pair(unit->GetName(), unit->GetUnitsPerMeter());
}

PyReference MakeReference(const std::optional<BCoordSys>& system,
                          const std::optional<BMathTransform>& transform, const Points& points) {
    PyReference made;
    SetSystem(made, system);
    SetTransform(made, transform);
    made.reference.PointPairVector = points;
    return made;
}

std::string Show(const PyReference& self) {
    const BGeoReference& reference = self.reference;
    std::string text = "<mapanchor.Reference";
    if (!self.kind.IsEmpty()) text += " " + self.kind.StdStr();
    if (reference.HasCoordSys()) text += ", " + reference.CoordSys->GetName().StdStr();
    if (reference.HasMathTransform()) text += ", with a transform";
    return text + ", " + std::to_string(reference.PointPairVector.size()) + " points>";
}

void DefinePoint(py::module_& module) {
    py::class_<BPointPair>(module, "Point")
        .def(py::init<long, long, double, double, double, BString, bool>(), py::arg("column"), py::arg("row"),
             py::arg("x"), py::arg("y"), py::arg("z") = 0.0, py::arg("name") = BString(),
             py::arg("enabled") = true)
        .def_readwrite("column", &BPointPair::Column)
        .def_readwrite("row", &BPointPair::Row)
        .def_property(
            "x", [](const BPointPair& p) { return p.World.x; },
            [](BPointPair& p, double value) { p.World.x = value; })
        .def_property(
            "y", [](const BPointPair& p) { return p.World.y; },
            [](BPointPair& p, double value) { p.World.y = value; })
        .def_property(
            "z", [](const BPointPair& p) { return p.World.z; },
            [](BPointPair& p, double value) { p.World.z = value; })
        .def_property(
            "name", [](const BPointPair& p) { return p.Name; },
            [](BPointPair& p, const BString& name) { p.Name = name; })
        .def_readwrite("enabled", &BPointPair::Enabled);
}

void DefineTransform(py::module_& module) {
    const auto to_world = [](const BMathTransform& self, double column, double row) {
        return Convert(&BMathTransform::ConvertSourceToTarget, self, column, row);
    };
    const auto to_pixel = [](const BMathTransform& self, double x, double y) {
        return Convert(&BMathTransform::ConvertTargetToSource, self, x, y);
    };
    py::class_<BMathTransform>(module, "Transform")
        .def(py::init([](double a, double b, double c, double d, double e, double f) {
                 return Affine({a, b, c, d, e, f});
             }),
             py::arg("a"), py::arg("b"), py::arg("c"), py::arg("d"), py::arg("e"), py::arg("f"))
        .def_property_readonly("kind", &BMathTransform::GetMathTransformType)
        .def_property_readonly("affine", &TermsOf)
        .def("to_world", to_world, py::arg("column"), py::arg("row"))
        .def("to_pixel", to_pixel, py::arg("x"), py::arg("y"));
}

void DefineSystem(py::module_& module) {
    const auto to_geodetic = [](const BCoordSys& self, double x, double y) {
        return Geodetic(&BCoordSys::ConvertToGeodetic, self, x, y);
    };
    const auto from_geodetic = [](const BCoordSys& self, double longitude, double latitude) {
        return Geodetic(&BCoordSys::ConvertFromGeodetic, self, longitude, latitude);
    };
    const auto unit = [](const BCoordSys& self) {
        const BSharedPtr<BUnit> found = self.GetUnits();
        return found ? NotEmpty(found->GetName()) : std::nullopt;
    };
    const auto epoch = [](const BCoordSys& self) {
        const double year = self.GetCoordinateEpoch();
        return year == 0.0 ? std::nullopt : std::optional<double>(year);
    };
    const auto is_same = [](const BCoordSys& self, const BCoordSys& other, std::optional<double> tolerance) {
        return tolerance ? self.IsSame(other, *tolerance) : self.IsSame(other);
    };
    const auto convert_to = [](const BCoordSys& self, const BCoordSys& other, double x, double y) {
        const BPoint point = self.ConvertTo(other, BPoint(x, y, 0.0));
        return Position(point.x, point.y);
    };
    py::class_<BCoordSys>(module, "CoordSys")
        .def(py::init(&MakeSystem), py::arg("text"))
        .def_property_readonly("name", &BCoordSys::GetName)
        .def_property_readonly("epsg", [](const BCoordSys& self) { return NotEmpty(self.ToEPSGCode()); })
        .def_property_readonly("wkt", &BCoordSys::ToWKT)
        .def_property_readonly("whole_wkt", &BCoordSys::ToWholeWKT)
        .def_property_readonly("wkt2", &BCoordSys::ToWKT2)
        .def_property_readonly("esri", [](const BCoordSys& self) { return NotEmpty(self.ToPRJ()); })
        .def_property_readonly("projjson", [](const BCoordSys& self) { return NotEmpty(self.ToPROJJSON()); })
        .def_property_readonly("proj", [](const BCoordSys& self) { return NotEmpty(self.ToPROJString()); })
        .def_property_readonly("horizontal", [](const BCoordSys& self) { return HorizontalOf(self); })
        .def_property_readonly("vertical",
                               [](const BCoordSys& self) { return Optional(self.GetVerticalCoordSys()); })
        .def_property_readonly("epoch", epoch)
        .def_property_readonly(
            "geodetic", [](const BCoordSys& self) { return self.GetKind() == BCoordSys::kKindGeodetic; })
        .def_property_readonly("unit", unit)
        .def("to_geodetic", to_geodetic, py::arg("x"), py::arg("y"))
        .def("from_geodetic", from_geodetic, py::arg("longitude"), py::arg("latitude"))
        .def("is_same", is_same, py::arg("other"), py::arg("tolerance") = py::none())
        .def("distance_to", &BCoordSys::DistanceTo, py::arg("other"))
        .def("convert_to", convert_to, py::arg("other"), py::arg("x"), py::arg("y"))
        .def("__repr__",
             [](const BCoordSys& self) { return "<mapanchor.CoordSys " + self.GetName().StdStr() + ">"; });
}

void DefineDiagnostic(py::module_& module) {
    using MapAnchor::BDiagnostic;
    const auto severity = [](const BDiagnostic& self) {
        constexpr const char* kWords[] = {"note", "warning", "error"};
        return kWords[static_cast<int>(self.GetSeverity())];
    };
    const auto line = [](const BDiagnostic& self) {
        return self.GetLine() > 0 ? std::optional<long>(self.GetLine()) : std::nullopt;
    };
    using Origin = MapAnchor::BReading::Origin;
    py::class_<Origin>(module, "Origin")
        .def_readonly("value", &Origin::Value)
        .def_readonly("file", &Origin::File)
        .def_readonly("place", &Origin::Place);
    py::class_<BDiagnostic>(module, "Diagnostic")
        .def_property_readonly("id", &BDiagnostic::GetId)
        .def_property_readonly("severity", severity)
        .def_property_readonly("text", &BDiagnostic::GetText)
        .def_property_readonly("file", &BDiagnostic::GetFile)
        .def_property_readonly("line", line)
        .def("__repr__", [](const BDiagnostic& self) {
            return BString::Format("<mapanchor.Diagnostic %ls: %ls>", self.GetId(), self.GetText());
        });
}

}  // namespace

void DefineReference(py::module_& module) {
    DefineDiagnostic(module);
    DefinePoint(module);
    DefineTransform(module);
    DefineSystem(module);
    const auto affine = [](const PyReference& self) {
        const BGeoReference& reference = self.reference;
        return reference.HasMathTransform() ? TermsOf(*reference.MathTransform) : py::object(py::none());
    };
    py::class_<PyReference>(module, "Reference")
        .def(py::init(&MakeReference), py::arg("crs") = py::none(), py::arg("transform") = py::none(),
             py::arg("points") = Points())
        .def_property("crs", &SystemOf, &SetSystem)
        .def_property("transform", &TransformOf, &SetTransform)
        .def_property("affine", affine,
                      [](PyReference& self, const Terms& terms) { SetTransform(self, Affine(terms)); })
        .def_property(
            "points", [](const PyReference& self) { return self.reference.PointPairVector; },
            [](PyReference& self, const Points& points) { self.reference.PointPairVector = points; })
        .def_property(
            "pixel_is_point",
            [](const PyReference& self) { return self.reference.IsPixelAsPointRegistered(); },
            [](PyReference& self, bool value) { self.reference.SetPixelAsPointRegistered(value); })
        .def_property_readonly("vertical_unit", &VerticalUnit)
        .def_property_readonly("kind", [](const PyReference& self) { return self.kind; })
        .def_property_readonly("used_file", [](const PyReference& self) { return self.used_file; })
        .def_property_readonly("files", [](const PyReference& self) { return self.files; })
        .def_property_readonly("diagnostics", [](const PyReference& self) { return self.diagnostics; })
        .def_property_readonly("origins", [](const PyReference& self) { return self.origins; })
        .def_property_readonly("size",
                               [](const PyReference& self) -> std::optional<std::pair<long, long>> {
                                   if (self.width <= 0 || self.height <= 0) return std::nullopt;
                                   return std::pair(self.width, self.height);
                               })
        .def_property_readonly(
            "anchor", [](const PyReference& self) { return self.centre_anchored ? "centre" : "corner"; })
        .def("__repr__", &Show);
}
