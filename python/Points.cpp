#include "Module.h"

#include <pybind11/operators.h>

namespace py = pybind11;
using namespace Tellurion;

namespace {

template <class P>
py::tuple ValuesOf(const P& p) {
    return py::make_tuple(p.Column, p.Row, p.World.x, p.World.y, p.World.z, p.Name, p.Enabled);
}

BControlPoint MakePoint(double column, double row, double x, double y, double z, const BString& name,
                        bool enabled) {
    BControlPoint point;
    point.Column = column;
    point.Row = row;
    point.World = BPoint(x, y, z);
    point.Name = name;
    point.Enabled = enabled;
    return point;
}

/// What both kinds of point have.
template <class P, class Make>
py::class_<P> Define(py::module_& module, const char* name, Make make) {
    const std::string format = std::string("mapanchor.") + name +
                               "(column={!r}, row={!r}, x={!r}, y={!r}, z={!r}, name={!r}, enabled={!r})";
    py::class_<P> point(module, name);
    point
        .def(py::init(make), py::arg("column"), py::arg("row"), py::arg("x"), py::arg("y"),
             py::arg("z") = 0.0, py::arg("name") = BString(), py::arg("enabled") = true)
        .def_readwrite("column", &P::Column)
        .def_readwrite("row", &P::Row)
        .def_property(
            "x", [](const P& p) { return p.World.x; }, [](P& p, double value) { p.World.x = value; })
        .def_property(
            "y", [](const P& p) { return p.World.y; }, [](P& p, double value) { p.World.y = value; })
        .def_property(
            "z", [](const P& p) { return p.World.z; }, [](P& p, double value) { p.World.z = value; })
        .def_property(
            "name", [](const P& p) { return p.Name; }, [](P& p, const BString& text) { p.Name = text; })
        .def_readwrite("enabled", &P::Enabled)
        .def(
            "__eq__", [](const P& a, const P& b) { return ValuesOf(a).equal(ValuesOf(b)); },
            py::is_operator())
        .def("__repr__", [format](const P& p) { return py::str(format).attr("format")(*ValuesOf(p)); })
        .def(py::pickle(&ValuesOf<P>, [make](const py::tuple& v) {
            return make(v[0].cast<decltype(P::Column)>(), v[1].cast<decltype(P::Row)>(), v[2].cast<double>(),
                        v[3].cast<double>(), v[4].cast<double>(), v[5].cast<BString>(), v[6].cast<bool>());
        }));
    point.attr("__hash__") = py::none();  // it can be changed
    return point;
}

}  // namespace

bool AreSamePoints(const BPointPair& a, const BPointPair& b) {
    return ValuesOf(a).equal(ValuesOf(b));
}

void DefinePoints(py::module_& module) {
    Define<BPointPair>(module, "Point",
                       [](long column, long row, double x, double y, double z, const BString& name,
                          bool enabled) { return BPointPair(column, row, x, y, z, name, enabled); });
    Define<BControlPoint>(module, "ControlPoint", &MakePoint)
        .def(py::init([](const BPointPair& pair) { return BControlPoint::From(pair); }), py::arg("point"));
    py::implicitly_convertible<BPointPair, BControlPoint>();
}
