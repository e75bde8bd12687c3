#pragma once

#include "Texts.h"
#include "Values.h"
#include "Words.h"

#include <Tellurion/BControlPoint.h>
#include <Tellurion/BCoordSys.h>
#include <Tellurion/BGeoReference.h>
#include <Tellurion/BMathTransform.h>

#include <memory>
#include <optional>
#include <utility>
#include <vector>

/// What a transform was fitted through: by it transforms that are not affine are compared and pickled.
struct FitRecipe {
    Tellurion::EMathTransformType kind;
    std::vector<Tellurion::BControlPoint> points;
    unsigned int width;
    unsigned int height;
};

/// A transform that keeps its recipe where there is one. References hold it by its base class.
struct PyTransform : Tellurion::BMathTransform {
    explicit PyTransform(const BMathTransform& transform, std::shared_ptr<const FitRecipe> recipe = nullptr)
        : BMathTransform(transform), recipe(std::move(recipe)) {}

    std::shared_ptr<const FitRecipe> recipe;
};

/// A reference and what its reading came to.
struct PyReference {
    Tellurion::BGeoReference reference;
    Tellurion::BString kind;
    Tellurion::BString used_file;
    bool centre_anchored = false;
    std::vector<Tellurion::BString> files = {};
    long width = 0;  ///< of the raster; 0 when not known
    long height = 0;
    std::vector<PyDiagnostic> diagnostics = {};
    std::vector<MapAnchor::BReading::Origin> origins = {};
};

using Position = std::pair<double, double>;

/// A str, bytes or os.PathLike as the file system has it.
Tellurion::BString PathOf(const pybind11::object& path);
unsigned int Flags(bool strict_transform, bool strict_crs);

/// A CoordSys, a text, a number of EPSG or what has to_wkt(), such as a pyproj.CRS.
Tellurion::BCoordSys SystemFrom(const pybind11::object& from);
std::optional<Tellurion::BCoordSys> OptionalSystemFrom(const pybind11::object& from);

/// Six terms, or those of an affine.Affine.
Tellurion::BMathTransform AffineFrom(const pybind11::object& terms);
/// An affine.Affine of the transform after a shift of the pixel by as much in both directions.
pybind11::object ToAffinePackage(const Tellurion::BMathTransform& transform, double shift);
/// A tuple of six, as Python users know a placement; None where it is no affine one.
pybind11::object TermsOf(const Tellurion::BMathTransform& transform);
bool IsAffine(const Tellurion::BMathTransform& transform);

std::optional<PyTransform> TransformOf(const PyReference& self);
/// Keeps the recipe.
void SetTransform(PyReference& self, const std::optional<PyTransform>& transform);
bool AreSameTransforms(const PyTransform& a, const PyTransform& b);
bool AreSamePoints(const Tellurion::BPointPair& a, const Tellurion::BPointPair& b);

/// The reference of a reading that has one.
PyReference ReferenceOf(const MapAnchor::BReading& reading);

/// West, south, east and north in the units of the system, of the raster's outer edge.
std::optional<std::tuple<double, double, double, double>> BoundsOf(const PyReference& self);
/// A geometry of GeoJSON; a ValueError where there is none.
pybind11::dict FootprintOf(const PyReference& self, long width, long height);
/// A feature of GeoJSON, without a geometry where there is no footprint.
pybind11::dict FeatureOf(const PyReference& self);

/// Runs `work` without the interpreter's lock. What is thrown and is no std::exception comes
/// from the PDF library.
template <class Failure, class Work>
void Guarded(const char* source, Work work) {
    const pybind11::gil_scoped_release released;
    try {
        work();
    } catch (const std::exception&) {
        throw;
    } catch (...) {
        throw Failure(source, "The PDF library refuses the file.");
    }
}

/// Each defines its classes and functions in the module.
void DefineFailures(pybind11::module_& module);
void DefineEnumerations(pybind11::module_& module);
void DefinePoints(pybind11::module_& module);
void DefineTransform(pybind11::module_& module);
void DefineSystem(pybind11::module_& module);
void DefineReference(pybind11::module_& module);
void DefineReading(pybind11::module_& module);
void DefineSaving(pybind11::module_& module);
void DefineReport(pybind11::module_& module);
/// Gives all of them the texts and signatures of the package's hints.
void Document(pybind11::module_& module);
