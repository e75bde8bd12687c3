#include "Module.h"

#include <MapAnchor/BGeoPDFPages.h>
#include <MapAnchor/BMapAnchor.h>
#include <MapAnchor/BReading.h>
#include <MapAnchor/BReferenceSources.h>
#include <Tellurion/BFileContentNotValidException.h>
#include <Tellurion/BFileNotFoundException.h>
#include <Tellurion/BFileUtilities.h>
#include <Tellurion/BLogger.h>

#include <cmath>

namespace py = pybind11;
using namespace Tellurion;
using MapAnchor::BDiagnostic;
using MapAnchor::BGeoPDFPages;
using MapAnchor::BMapAnchor;
using MapAnchor::BReading;
using MapAnchor::BReadingOptions;
using MapAnchor::BReferenceSource;
using MapAnchor::BReferenceSources;

namespace {

/// Why a reading failed goes to the log, since an exception has one text.
void LogDoubts(const BReading& reading) {
    for (const BDiagnostic& remark : reading.GetDiagnostics())
        if (remark.GetSeverity() != BDiagnostic::ESeverity::Note)
            BLogger::Instance()->Write(ELogSeverity::Error, remark.GetText());
}

/// What a transform that is not affine was fitted through, as far as the reading states it.
std::shared_ptr<const FitRecipe> RecipeOf(const BReading& reading, EMathTransformType kind) {
    if (kind == EMathTransformType::Affine) return nullptr;
    FitRecipe recipe{kind, reading.GetControlPoints(), static_cast<unsigned int>(reading.GetWidth()),
                     static_cast<unsigned int>(reading.GetHeight())};
    return recipe.points.empty() ? nullptr : std::make_shared<const FitRecipe>(std::move(recipe));
}

PyReference Read(const py::object& path, std::optional<EReferenceType> type, long width, long height,
                 EMathTransformType fit, bool strict_transform, bool strict_crs, std::optional<Box> box,
                 std::optional<double> dpi, const BString& source, int page, const BString& map, bool shown,
                 const BString& password, bool strict_pdf, bool explain) {
    const BString file = PathOf(path);
    BReadingOptions options;
    if (type) options.SetType(*type);
    options.SetFlags(Flags(strict_transform, strict_crs));
    options.SetSize(width, height);
    options.SetFindsSize(true);
    options.SetMathType(fit);
    if (box) options.SetPdfBox(static_cast<int>(*box));
    if (dpi) options.SetResolution(*dpi);
    options.SetSource(source);
    options.SetPdfStrict(strict_pdf);
    options.SetExplains(explain);
    if (page != 1) options.SetPdfPage(page);
    if (!map.IsEmpty()) options.SetPdfMap(map);
    options.SetPdfShown(shown);
    if (!password.IsEmpty()) options.SetParam(BMapAnchor::kValPDFPassword, password);
    const py::gil_scoped_release released;
    const BReading reading = BReading::Of(file, options);
    if (!reading.HasReference()) LogDoubts(reading);
    reading.ThrowFailure();
    return ReferenceOf(reading);
}

/// None where it could not be compared.
std::optional<double> Known(double distance) {
    return std::isnan(distance) ? std::nullopt : std::optional(distance);
}

py::object SourceValue(const BReferenceSource& source) {
    const BReading& reading = source.GetReading();
    const py::object reference = reading.HasReference() ? py::cast(ReferenceOf(reading)) : py::none();
    return py::detail::ValueClass("Source")(
        source.GetKind(), py::tuple(py::cast(source.GetFiles())), reference, reading.GetFailureText(),
        source.Wins(), source.WinsInGdal(), Known(source.GetDistancePixels()),
        Known(source.GetDistanceMetres()), py::tuple(py::cast(ToPython(reading.GetDiagnostics()))));
}

void RequireFile(const BString& file, const char* source) {
    if (!BFileUtilities::Exists(file))
        throw BFileNotFoundException(source, BString("File <" + file.StdStr() + "> does NOT exist."));
}

py::list Sources(const py::object& path, EMathTransformType fit, long width, long height) {
    const BString file = PathOf(path);
    RequireFile(file, "mapanchor.sources");
    BReadingOptions options;
    options.SetMathType(fit);
    options.SetSize(width, height);
    options.SetFindsSize(true);
    std::optional<BReferenceSources> found;
    {
        const py::gil_scoped_release released;
        found = BReferenceSources::Of(file, options);
    }
    py::list sources;
    for (const BReferenceSource& source : found->GetSources())
        sources.append(SourceValue(source));
    return sources;
}

py::list Maps(const py::object& path) {
    const BString file = PathOf(path);
    BGeoPDFPages pages;
    Guarded<BFileContentNotValidException>("mapanchor.maps", [&] {
        RequireFile(file, "mapanchor.maps");
        pages = BGeoPDFPages::List(file);
        if (!pages.Fault.IsEmpty())
            throw BFileContentNotValidException("mapanchor.maps",
                                                BString("<" + file.StdStr() + ">: " + pages.Fault.StdStr()));
    });
    if (!pages.Complete &&
        PyErr_WarnEx(PyExc_UserWarning, "there are more pages or maps than are listed", 1) != 0)
        throw py::error_already_set();
    py::list maps;
    for (const auto& [number, page] : pages.Pages) {
        int of_page = 0;
        for (const MapAnchor::BGeoPDFMap& map : page.Maps)
            maps.append(py::detail::ValueClass("Map")(
                map.Name, number, ++of_page,
                py::make_tuple(map.Box.Left, map.Box.Bottom, map.Box.Right, map.Box.Top), map.Area,
                map.CoordSys, map.InUse, map.Fault));
    }
    return maps;
}

}  // namespace

BString PathOf(const py::object& path) {
    return BString(py::module_::import("os").attr("fsencode")(path).cast<std::string>());
}

unsigned int Flags(bool strict_transform, bool strict_crs) {
    return (strict_transform ? BMapAnchor::kStrictTransform : 0U) |
           (strict_crs ? BMapAnchor::kStrictCoordSys : 0U);
}

std::vector<PyDiagnostic> ToPython(const std::vector<BDiagnostic>& diagnostics) {
    constexpr const char* kWords[] = {"note", "warning", "error"};
    std::vector<PyDiagnostic> copies;
    for (const BDiagnostic& remark : diagnostics)
        copies.push_back({remark.GetId(), kWords[static_cast<int>(remark.GetSeverity())], remark.GetText(),
                          remark.GetFile(),
                          remark.GetLine() > 0 ? std::optional(remark.GetLine()) : std::nullopt,
                          remark.GetPlace()});
    return copies;
}

PyReference ReferenceOf(const BReading& reading) {
    PyReference result{reading.GetReference(), reading.GetKind(), reading.GetUsedFile(),
                       reading.IsCentreAnchored()};
    result.files = reading.GetFiles();
    result.width = reading.GetWidth();
    result.height = reading.GetHeight();
    result.diagnostics = ToPython(reading.GetDiagnostics());
    result.origins = reading.GetOrigins();
    if (result.reference.HasMathTransform()) {
        const BMathTransform& transform = *result.reference.MathTransform;
        SetTransform(result, PyTransform(transform, RecipeOf(reading, transform.GetMathTransformType())));
    }
    return result;
}

void DefineReading(py::module_& module) {
    const auto affine = EMathTransformType::Affine;
    module.def("read", &Read, py::arg("path"), py::arg("type") = py::none(), py::kw_only(),
               py::arg("width") = 0, py::arg("height") = 0, py::arg("fit") = affine,
               py::arg("strict_transform") = false, py::arg("strict_crs") = false,
               py::arg("box") = py::none(), py::arg("dpi") = py::none(), py::arg("source") = BString(),
               py::arg("page") = 1, py::arg("map") = BString(), py::arg("shown") = false,
               py::arg("password") = BString(), py::arg("strict_pdf") = false, py::arg("explain") = false);
    module.def("sources", &Sources, py::arg("path"), py::kw_only(), py::arg("fit") = affine,
               py::arg("width") = 0, py::arg("height") = 0);
    module.def("maps", &Maps, py::arg("path"));
}
