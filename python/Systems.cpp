#include "Module.h"
#include "Positions.h"

#include <pybind11/operators.h>

#include <Tellurion/BCoordSys.h>
#include <Tellurion/BCoordSysException.h>
#include <Tellurion/BLinearUnit.h>

#include <memory>

namespace py = pybind11;
using namespace Tellurion;

namespace {

[[noreturn]] void Fail(const std::string& message, const char* source) {
    throw BCoordSysException(BString(message), source, BString());
}

BCoordSys MakeSystem(const BString& text) {
    constexpr const char* kSource = "mapanchor.CoordSys";
    const py::gil_scoped_release released;
    const std::unique_ptr<BCoordSys> made(BCoordSys::FromText(text));
    if (!made) Fail("unknown coordinate system: " + text.StdStr(), kSource);
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

py::tuple Geodetic(BPoint (BCoordSys::*convert)(const BPoint&) const, const BCoordSys& system,
                   const py::object& x, const py::object& y) {
    return ConvertPositions(x, y, [&system, convert](double& one, double& other) {
        const BPoint point = (system.*convert)(BPoint(one, other, 0.0));
        one = point.x;
        other = point.y;
        return true;
    });
}

py::tuple ConvertTo(const BCoordSys& self, const py::object& to, const py::object& x, const py::object& y) {
    const BCoordSys other = SystemFrom(to);
    if (!self.CanConvertTo(other))
        Fail("no transformation from " + self.GetName().StdStr() + " to " + other.GetName().StdStr() +
                 " is available",
             "mapanchor.CoordSys.convert_to");
    return ConvertPositions(x, y, [&](double& one, double& two) {
        const BPoint point = self.ConvertTo(other, BPoint(one, two, 0.0));
        one = point.x;
        two = point.y;
        return true;
    });
}

bool IsSame(const BCoordSys& self, const py::object& other, std::optional<double> tolerance) {
    const BCoordSys system = SystemFrom(other);
    const py::gil_scoped_release released;
    return tolerance ? self.IsSame(system, *tolerance) : self.IsSame(system);
}

/// Equal systems may differ in name, text and code; this is what they share.
py::ssize_t HashOf(const BCoordSys& self) {
    const std::unique_ptr<BCoordSys> vertical(self.GetVerticalCoordSys());
    return self.GetKind() * 2 + (vertical ? 1 : 0);
}

py::str Show(const BCoordSys& self) {
    const BString code = self.ToEPSGCode();
    const py::str name = py::cast(self.GetName());
    if (code.IsEmpty()) return py::str("<mapanchor.CoordSys {}>").format(name);
    return py::str("<mapanchor.CoordSys {}, {}>").format(name, code);
}

void DefineTexts(py::class_<BCoordSys>& system) {
    const auto epsg = [](const BCoordSys& self) { return NotEmpty(self.ToEPSGCode()); };
    system.def_property_readonly("name", &BCoordSys::GetName)
        .def_property_readonly("epsg", epsg)
        .def_property_readonly("wkt", &BCoordSys::ToWKT)
        .def_property_readonly("whole_wkt", &BCoordSys::ToWholeWKT)
        .def_property_readonly("wkt2", &BCoordSys::ToWKT2)
        .def("to_wkt", &BCoordSys::ToWKT2)
        .def_property_readonly("esri", [](const BCoordSys& self) { return NotEmpty(self.ToPRJ()); })
        .def_property_readonly("projjson", [](const BCoordSys& self) { return NotEmpty(self.ToPROJJSON()); })
        .def_property_readonly("proj", [](const BCoordSys& self) { return NotEmpty(self.ToPROJString()); });
}

}  // namespace

BCoordSys SystemFrom(const py::object& from) {
    if (py::isinstance<BCoordSys>(from)) return from.cast<BCoordSys>();
    if (py::isinstance<py::str>(from)) return MakeSystem(from.cast<BString>());
    if (py::isinstance<py::int_>(from) && !py::isinstance<py::bool_>(from))
        return MakeSystem(py::str(from).cast<BString>());
    for (const char* name : {"to_wkt", "ExportToWkt"})  // pyproj, rasterio and others; osgeo
        if (py::hasattr(from, name)) return MakeSystem(from.attr(name)().cast<BString>());
    throw py::type_error(
        "a coordinate system is expected: a CoordSys, a text, a number of EPSG or an "
        "object with to_wkt()");
}

std::optional<BCoordSys> OptionalSystemFrom(const py::object& from) {
    return from.is_none() ? std::nullopt : std::optional<BCoordSys>(SystemFrom(from));
}

void DefineSystem(py::module_& module) {
    const auto to_geodetic = [](const BCoordSys& self, const py::object& x, const py::object& y) {
        return Geodetic(&BCoordSys::ConvertToGeodetic, self, x, y);
    };
    const auto from_geodetic = [](const BCoordSys& self, const py::object& longitude,
                                  const py::object& latitude) {
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
    py::class_<BCoordSys> system(module, "CoordSys");
    DefineTexts(system);
    system.def(py::init(&SystemFrom), py::arg("system"))
        .def_property_readonly("horizontal", [](const BCoordSys& self) { return HorizontalOf(self); })
        .def_property_readonly("vertical",
                               [](const BCoordSys& self) { return Optional(self.GetVerticalCoordSys()); })
        .def_property_readonly("epoch", epoch)
        .def_property_readonly(
            "geodetic", [](const BCoordSys& self) { return self.GetKind() == BCoordSys::kKindGeodetic; })
        .def_property_readonly("unit", unit)
        .def("to_geodetic", to_geodetic, py::arg("x"), py::arg("y"))
        .def("from_geodetic", from_geodetic, py::arg("longitude"), py::arg("latitude"))
        .def("is_same", &IsSame, py::arg("other"), py::arg("tolerance") = py::none())
        .def(
            "distance_to",
            [](const BCoordSys& self, const py::object& other) { return self.DistanceTo(SystemFrom(other)); },
            py::arg("other"))
        .def("convert_to", &ConvertTo, py::arg("other"), py::arg("x"), py::arg("y"))
        .def(
            "__eq__", [](const BCoordSys& self, const BCoordSys& other) { return self.IsSame(other); },
            py::is_operator())
        .def("__hash__", &HashOf)
        .def("__repr__", &Show)
        .def(py::pickle([](const BCoordSys& self) { return py::make_tuple(self.ToWholeWKT()); },
                        [](const py::tuple& state) { return MakeSystem(state[0].cast<BString>()); }));
}
