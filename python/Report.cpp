#include "Module.h"

#include <pybind11/stl.h>

#include <Tellurion/BControlPoint.h>
#include <Tellurion/BFitReport.h>

#include <optional>
#include <vector>

namespace py = pybind11;
using namespace Tellurion;

namespace {

template <class Owner>
auto Optional(bool Owner::*has, double Owner::*value) {
    return [has, value](const Owner& self) {
        return self.*has ? std::optional<double>(self.*value) : std::nullopt;
    };
}

BFitReport ReportOf(const std::vector<BControlPoint>& points, EMathTransformType kind, unsigned int width,
                    unsigned int height) {
    const py::gil_scoped_release released;
    return BFitReport::Make(kind, points, width, height);
}

std::vector<BFitAlternative> Compare(const std::vector<BControlPoint>& points, unsigned int width,
                                     unsigned int height) {
    const py::gil_scoped_release released;
    return BFitReport::Compare(points, width, height);
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

void DefinePoint(py::module_& module) {
    py::class_<BControlPoint>(module, "ControlPoint")
        .def(py::init(&MakePoint), py::arg("column"), py::arg("row"), py::arg("x"), py::arg("y"),
             py::arg("z") = 0.0, py::arg("name") = BString(), py::arg("enabled") = true)
        .def(py::init([](const BPointPair& pair) { return BControlPoint::From(pair); }), py::arg("point"))
        .def_readwrite("column", &BControlPoint::Column)
        .def_readwrite("row", &BControlPoint::Row)
        .def_property(
            "x", [](const BControlPoint& p) { return p.World.x; },
            [](BControlPoint& p, double value) { p.World.x = value; })
        .def_property(
            "y", [](const BControlPoint& p) { return p.World.y; },
            [](BControlPoint& p, double value) { p.World.y = value; })
        .def_property(
            "z", [](const BControlPoint& p) { return p.World.z; },
            [](BControlPoint& p, double value) { p.World.z = value; })
        .def_property(
            "name", [](const BControlPoint& p) { return p.Name; },
            [](BControlPoint& p, const BString& name) { p.Name = name; })
        .def_readwrite("enabled", &BControlPoint::Enabled);
    py::implicitly_convertible<BPointPair, BControlPoint>();
}

}  // namespace

void DefineReport(py::module_& module) {
    DefinePoint(module);
    using R = BFitResidual;
    py::class_<R>(module, "Residual")
        .def_property_readonly("dx_pixels", Optional(&R::HasResidual, &R::DxPixels))
        .def_property_readonly("dy_pixels", Optional(&R::HasResidual, &R::DyPixels))
        .def_property_readonly("pixels", Optional(&R::HasResidual, &R::ResidualPixels))
        .def_property_readonly("map_units", Optional(&R::HasResidual, &R::Residual))
        .def_property_readonly("left_out_pixels", Optional(&R::HasLeftOut, &R::LeftOutPixels))
        .def_property_readonly("left_out_map_units", Optional(&R::HasLeftOut, &R::LeftOut))
        .def_readonly("suspect", &R::Suspect);
    using A = BFitAlternative;
    py::class_<A>(module, "Alternative")
        .def_readonly("kind", &A::Type)
        .def_property_readonly("left_out_rmse_pixels", Optional(&A::HasLeftOut, &A::LeftOutRmsePixels))
        .def_readonly("worse", &A::Worse)
        .def_readonly("chosen", &A::Chosen)
        .def_readonly("reason", &A::Reason);
    using F = BFitReport;
    py::class_<F>(module, "FitReport")
        .def_readonly("transform", &F::Transform)
        .def_readonly("residuals", &F::Residuals)
        .def_readonly("used", &F::Used)
        .def_property_readonly("rmse", Optional(&F::HasRmse, &F::Rmse))
        .def_property_readonly("rmse_pixels", Optional(&F::HasRmse, &F::RmsePixels))
        .def_property_readonly("rmse_adjusted_pixels", Optional(&F::HasRmseAdjusted, &F::RmseAdjustedPixels))
        .def_property_readonly("left_out_rmse_pixels", Optional(&F::HasLeftOutRmse, &F::LeftOutRmsePixels))
        .def_property_readonly("max_pixels", Optional(&F::HasRmse, &F::MaxPixels))
        .def_property_readonly("hull_share", Optional(&F::HasHullShare, &F::HullShare))
        .def_readonly("near_line", &F::NearLine)
        .def_property_readonly("shape", [](const F& self) { return self.DescribeShape(BString()); });
    module.def("report", &ReportOf, py::arg("points"), py::arg("kind") = EMathTransformType::Affine,
               py::kw_only(), py::arg("width") = 0, py::arg("height") = 0);
    module.def("compare", &Compare, py::arg("points"), py::kw_only(), py::arg("width") = 0,
               py::arg("height") = 0);
}
