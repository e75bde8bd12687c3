#include "Module.h"
#include "Positions.h"

#include <pybind11/operators.h>

#include <array>
#include <memory>
#include <string>

namespace py = pybind11;
using namespace Tellurion;

namespace {

using Terms = std::array<double, 6>;

Terms ReadTerms(const BMathTransform& transform) {
    Terms t{};
    transform.GetAffineParameters(t[0], t[1], t[2], t[3], t[4], t[5]);
    return t;
}

PyTransform MakeAffine(double a, double b, double c, double d, double e, double f) {
    const std::unique_ptr<BMathTransform> made(BMathTransform::CreateAffine(a, b, c, d, e, f, true));
    if (!made) throw py::value_error("these terms have no inverse");
    return PyTransform(*made);
}

bool AreSame(const BControlPoint& a, const BControlPoint& b) {
    return a.Column == b.Column && a.Row == b.Row && a.World.x == b.World.x && a.World.y == b.World.y &&
           a.Enabled == b.Enabled;
}

bool AreSame(const FitRecipe& a, const FitRecipe& b) {
    return std::equal(a.points.begin(), a.points.end(), b.points.begin(), b.points.end(),
                      [](const auto& one, const auto& other) { return AreSame(one, other); });
}

/// The same wherever the points of the recipe are.
bool HaveSameValues(const BMathTransform& a, const BMathTransform& b, const FitRecipe& recipe) {
    for (const BControlPoint& point : recipe.points) {
        double ax = point.Column + 0.25;
        double ay = point.Row + 0.25;
        double bx = ax;
        double by = ay;
        if (a.ConvertSourceToTarget(ax, ay) != b.ConvertSourceToTarget(bx, by) || ax != bx || ay != by)
            return false;
    }
    return true;
}

PyTransform FromRecipe(const FitRecipe& recipe) {
    const py::gil_scoped_release released;
    return PyTransform(BMathTransform::Fit(recipe.kind, recipe.points, recipe.width, recipe.height),
                       std::make_shared<const FitRecipe>(recipe));
}

py::tuple StateOf(const PyTransform& self) {
    const EMathTransformType kind = self.GetMathTransformType();
    if (kind == EMathTransformType::Affine) return py::make_tuple(TermsOf(self));
    const FitRecipe* const recipe = self.recipe.get();
    if (!recipe || !HaveSameValues(self, FromRecipe(*recipe), *recipe))
        throw py::type_error("the control points of this " + py::str(py::cast(kind)).cast<std::string>() +
                             " transform are not known, so it cannot be pickled or copied");
    return py::make_tuple(kind, recipe->points, recipe->width, recipe->height);
}

PyTransform FromState(const py::tuple& state) {
    if (state.size() == 1) return PyTransform(AffineFrom(state[0]));
    return FromRecipe({state[0].cast<EMathTransformType>(), state[1].cast<std::vector<BControlPoint>>(),
                       state[2].cast<unsigned int>(), state[3].cast<unsigned int>()});
}

py::ssize_t HashOf(const PyTransform& self) {
    if (IsAffine(self)) return py::hash(TermsOf(self));
    return static_cast<py::ssize_t>(self.GetMathTransformType());
}

py::str Show(const PyTransform& self) {
    if (self.GetMathTransformType() == EMathTransformType::Affine)
        return py::str("mapanchor.Transform") + py::str(py::repr(TermsOf(self)));
    return py::str("<mapanchor.Transform {}>").format(self.GetMathTransformType());
}

}  // namespace

bool IsAffine(const BMathTransform& transform) {
    const EMathTransformType type = transform.GetMathTransformType();
    return type == EMathTransformType::Affine || type == EMathTransformType::Conformal;
}

py::object TermsOf(const BMathTransform& transform) {
    if (!IsAffine(transform)) return py::none();
    const Terms t = ReadTerms(transform);
    return py::make_tuple(t[0], t[1], t[2], t[3], t[4], t[5]);
}

BMathTransform AffineFrom(const py::object& terms) {
    const auto values = py::tuple(terms).cast<std::vector<double>>();
    const bool has_third_row = values.size() == 9 && values[6] == 0.0 && values[7] == 0.0 && values[8] == 1.0;
    if (values.size() != 6 && !has_third_row)
        throw py::value_error("six terms or an affine.Affine are expected");
    return MakeAffine(values[0], values[1], values[2], values[3], values[4], values[5]);
}

py::object ToAffinePackage(const BMathTransform& transform, double shift) {
    if (!IsAffine(transform)) throw py::value_error("the transform is not affine");
    const Terms t = ReadTerms(transform);
    return py::module_::import("affine").attr("Affine")(t[0], t[1], t[2] + shift * (t[0] + t[1]), t[3], t[4],
                                                        t[5] + shift * (t[3] + t[4]));
}

bool AreSameTransforms(const PyTransform& a, const PyTransform& b) {
    if (a.GetMathTransformType() != b.GetMathTransformType()) return false;
    if (IsAffine(a)) return ReadTerms(a) == ReadTerms(b);
    return a.recipe && b.recipe && AreSame(*a.recipe, *b.recipe) && HaveSameValues(a, b, *a.recipe);
}

void DefineTransform(py::module_& module) {
    const auto to_world = [](const PyTransform& self, const py::object& column, const py::object& row) {
        return ConvertPositions(column, row,
                                [&self](double& x, double& y) { return self.ConvertSourceToTarget(x, y); });
    };
    const auto to_pixel = [](const PyTransform& self, const py::object& x, const py::object& y) {
        return ConvertPositions(
            x, y, [&self](double& one, double& other) { return self.ConvertTargetToSource(one, other); });
    };
    py::class_<PyTransform>(module, "Transform")
        .def(py::init(&MakeAffine), py::arg("a"), py::arg("b"), py::arg("c"), py::arg("d"), py::arg("e"),
             py::arg("f"))
        .def(py::init([](const py::object& terms) { return PyTransform(AffineFrom(terms)); }),
             py::arg("terms"))
        .def_property_readonly("kind", [](const PyTransform& self) { return self.GetMathTransformType(); })
        .def_property_readonly("affine", [](const PyTransform& self) { return TermsOf(self); })
        .def("to_affine", [](const PyTransform& self) { return ToAffinePackage(self, 0.0); })
        .def("to_world", to_world, py::arg("column"), py::arg("row"))
        .def("to_pixel", to_pixel, py::arg("x"), py::arg("y"))
        .def(
            "__eq__",
            [](const PyTransform& self, const PyTransform& other) { return AreSameTransforms(self, other); },
            py::is_operator())
        .def("__hash__", &HashOf)
        .def("__copy__", [](const PyTransform& self) { return self; })
        .def("__deepcopy__", [](const PyTransform& self, const py::object&) { return self; })
        .def("__repr__", &Show)
        .def(py::pickle(&StateOf, &FromState));
}
