#include "Module.h"

#include <pybind11/stl.h>

#include <Tellurion/BControlPoint.h>
#include <Tellurion/BFitReport.h>

#include <optional>
#include <vector>

namespace py = pybind11;
using namespace Tellurion;

namespace {

template <class Self, class Owner>
auto Optional(bool Owner::*has, double Owner::*value) {
    return [has, value](const Self& self) {
        return self.*has ? std::optional<double>(self.*value) : std::nullopt;
    };
}

std::vector<BFitAlternative> Compare(const std::vector<BControlPoint>& points, unsigned int width,
                                     unsigned int height) {
    const py::gil_scoped_release released;
    return BFitReport::Compare(points, width, height);
}

PyTransform Fit(const std::vector<BControlPoint>& points, EMathTransformType kind, unsigned int width,
                unsigned int height) {
    const py::gil_scoped_release released;
    const BMathTransform made = BMathTransform::Fit(kind, points, width, height);
    return PyTransform(made, std::make_shared<const FitRecipe>(FitRecipe{kind, points, width, height}));
}

/// A fit is that of its report, with what it was fitted through.
struct PyReport : BFitReport {
    PyReport(const BFitReport& report, FitRecipe made_of)
        : BFitReport(report), recipe(std::make_shared<const FitRecipe>(std::move(made_of))) {}

    std::shared_ptr<const FitRecipe> recipe;
};

PyReport ReportOf(const std::vector<BControlPoint>& points, EMathTransformType kind, unsigned int width,
                  unsigned int height) {
    const py::gil_scoped_release released;
    return {BFitReport::Make(kind, points, width, height), {kind, points, width, height}};
}

}  // namespace

void DefineReport(py::module_& module) {
    using R = BFitResidual;
    py::class_<R>(module, "Residual")
        .def_property_readonly("dx_pixels", Optional<R>(&R::HasResidual, &R::DxPixels))
        .def_property_readonly("dy_pixels", Optional<R>(&R::HasResidual, &R::DyPixels))
        .def_property_readonly("pixels", Optional<R>(&R::HasResidual, &R::ResidualPixels))
        .def_property_readonly("map_units", Optional<R>(&R::HasResidual, &R::Residual))
        .def_property_readonly("left_out_pixels", Optional<R>(&R::HasLeftOut, &R::LeftOutPixels))
        .def_property_readonly("left_out_map_units", Optional<R>(&R::HasLeftOut, &R::LeftOut))
        .def_readonly("suspect", &R::Suspect)
        .def("__repr__", [](const R& self) {
            return py::str("<mapanchor.Residual {} pixels{}>")
                .format(
                    self.HasResidual ? py::object(py::float_(self.ResidualPixels)) : py::object(py::none()),
                    self.Suspect ? ", suspect" : "");
        });
    using A = BFitAlternative;
    py::class_<A>(module, "Alternative")
        .def_readonly("kind", &A::Type)
        .def_property_readonly("left_out_rmse_pixels", Optional<A>(&A::HasLeftOut, &A::LeftOutRmsePixels))
        .def_readonly("worse", &A::Worse)
        .def_readonly("chosen", &A::Chosen)
        .def_readonly("reason", &A::Reason)
        .def("__repr__", [](const A& self) {
            return py::str("<mapanchor.Alternative {}{}>").format(self.Type, self.Chosen ? ", chosen" : "");
        });
    using F = PyReport;
    py::class_<F>(module, "FitReport")
        .def_property_readonly("transform",
                               [](const F& self) { return PyTransform(self.Transform, self.recipe); })
        .def_readonly("residuals", &F::Residuals)
        .def_readonly("used", &F::Used)
        .def_property_readonly("rmse", Optional<F>(&F::HasRmse, &F::Rmse))
        .def_property_readonly("rmse_pixels", Optional<F>(&F::HasRmse, &F::RmsePixels))
        .def_property_readonly("rmse_adjusted_pixels",
                               Optional<F>(&F::HasRmseAdjusted, &F::RmseAdjustedPixels))
        .def_property_readonly("left_out_rmse_pixels", Optional<F>(&F::HasLeftOutRmse, &F::LeftOutRmsePixels))
        .def_property_readonly("max_pixels", Optional<F>(&F::HasRmse, &F::MaxPixels))
        .def_property_readonly("hull_share", Optional<F>(&F::HasHullShare, &F::HullShare))
        .def_readonly("near_line", &F::NearLine)
        .def_property_readonly("shape", [](const F& self) { return self.DescribeShape(BString()); })
        .def("__repr__", [](const F& self) {
            return py::str("<mapanchor.FitReport {}, {} points, rmse {} pixels>")
                .format(self.Transform.GetMathTransformType(), self.Used,
                        self.HasRmse ? py::object(py::float_(self.RmsePixels)) : py::object(py::none()));
        });
    module.def("fit", &Fit, py::arg("points"), py::arg("kind") = EMathTransformType::Affine, py::kw_only(),
               py::arg("width") = 0, py::arg("height") = 0);
    module.def("report", &ReportOf, py::arg("points"), py::arg("kind") = EMathTransformType::Affine,
               py::kw_only(), py::arg("width") = 0, py::arg("height") = 0);
    module.def("compare", &Compare, py::arg("points"), py::kw_only(), py::arg("width") = 0,
               py::arg("height") = 0);
}
