#include "Positions.h"

#include <pybind11/numpy.h>

#include <Tellurion/BCoordSysException.h>

#include <limits>

namespace py = pybind11;

namespace {

using Numbers = py::array_t<double, py::array::c_style>;

/// Arrays of one value are arrays.
bool IsNumber(const py::object& value) {
    if (py::isinstance<py::str>(value) || py::isinstance<py::bytes>(value))
        throw py::type_error("a number or an array of numbers is expected, not a text");
    return !py::hasattr(value, "__len__");
}

py::tuple ConvertOne(double x, double y, const Convert& convert) {
    bool has_value = false;
    {
        const py::gil_scoped_release released;
        has_value = convert(x, y);
    }
    if (!has_value) throw py::value_error("there is no value at this position");
    return py::make_tuple(x, y);
}

void ConvertAll(double* x, double* y, py::ssize_t count, const Convert& convert) {
    constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
    for (py::ssize_t i = 0; i < count; ++i) {
        bool has_value = false;
        try {
            has_value = convert(x[i], y[i]);
        } catch (const Tellurion::BCoordSysException&) {
        }
        if (!has_value) x[i] = y[i] = kNone;
    }
}

/// A copy that can be written.
Numbers CopyOf(const py::module_& numpy, const py::handle& view) {
    return Numbers(numpy.attr("array")(view, py::arg("dtype") = "float64", py::arg("order") = "C"));
}

}  // namespace

py::tuple ConvertPositions(const py::object& x, const py::object& y, const Convert& convert) {
    if (IsNumber(x) && IsNumber(y)) return ConvertOne(x.cast<double>(), y.cast<double>(), convert);
    const py::module_ numpy = py::module_::import("numpy");
    const py::sequence views = numpy.attr("broadcast_arrays")(x, y);
    Numbers xs = CopyOf(numpy, views[0]);
    Numbers ys = CopyOf(numpy, views[1]);
    double* const first_x = xs.mutable_data();
    double* const first_y = ys.mutable_data();
    {
        const py::gil_scoped_release released;
        ConvertAll(first_x, first_y, xs.size(), convert);
    }
    return py::make_tuple(xs, ys);
}
