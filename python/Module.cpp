#include "Module.h"

#include <pybind11/stl.h>

#include <MapAnchor/BMapAnchor.h>
#include <MapAnchor/BReading.h>
#include <Tellurion/BLogger.h>
#include <Tellurion/BMathTransform.h>

#include <exception>
#include <optional>
#include <string>
#include <vector>

namespace py = pybind11;
using namespace Tellurion;
using MapAnchor::BDiagnostic;
using MapAnchor::BMapAnchor;
using MapAnchor::BReading;
using MapAnchor::BReadingOptions;

BString PathOf(const py::object& path) {
    return BString(py::module_::import("os").attr("fsencode")(path).cast<std::string>());
}

unsigned int Flags(bool strict_transform, bool strict_crs) {
    return (strict_transform ? BMapAnchor::kStrictTransform : 0U) |
           (strict_crs ? BMapAnchor::kStrictCoordSys : 0U);
}

namespace {

/// The boxes under the numbers by which the library knows them.
enum class Box : int { Art = 0, Trim = 2, Bleed = 3, Crop = 4, Media = 5 };

/// Why a reading failed goes to the log, since an exception has one text.
void LogDoubts(const BReading& reading) {
    for (const BDiagnostic& remark : reading.GetDiagnostics())
        if (remark.GetSeverity() != BDiagnostic::ESeverity::Note)
            BLogger::Instance()->Write(ELogSeverity::Error, remark.GetText());
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
    PyReference result{reading.GetReference(), reading.GetKind(), reading.GetUsedFile(),
                       reading.IsCentreAnchored()};
    result.files = reading.GetFiles();
    result.width = reading.GetWidth();
    result.height = reading.GetHeight();
    result.diagnostics = reading.GetDiagnostics();
    result.origins = reading.GetOrigins();
    return result;
}

BMathTransform Fit(const std::vector<BPointPair>& points, EMathTransformType kind, unsigned int width,
                   unsigned int height) {
    const py::gil_scoped_release released;
    return BMathTransform(kind, points, width, height, true);
}

void DefineEnumerations(py::module_& module) {
    py::enum_<EReferenceType>(module, "Type")
        .value("GEOTIFF", EReferenceType::GeoTIFF)
        .value("TAB", EReferenceType::TAB)
        .value("RSF", EReferenceType::RSF)
        .value("WLD", EReferenceType::WLD)
        .value("MRSID", EReferenceType::MrSID)
        .value("ECW", EReferenceType::ECW)
        .value("ERS", EReferenceType::ERS)
        .value("DOQQ", EReferenceType::DOQQ)
        .value("KAP", EReferenceType::KAP)
        .value("POINTS", EReferenceType::Points)
        .value("AUX", EReferenceType::AuxXml)
        .value("VRT", EReferenceType::Vrt)
        .value("KML", EReferenceType::Kml)
        .value("PDF", EReferenceType::GeoPDF);
    py::enum_<EMathTransformType>(module, "Fit")
        .value("AFFINE", EMathTransformType::Affine)
        .value("CONFORMAL", EMathTransformType::Conformal)
        .value("POLYNOMIAL2", EMathTransformType::Polynomial2)
        .value("POLYNOMIAL3", EMathTransformType::Polynomial3)
        .value("PROJECTIVE", EMathTransformType::Projective)
        .value("THIN_PLATE_SPLINE", EMathTransformType::ThinPlateSpline)
        .value("BILINEAR", EMathTransformType::Bilinear)
        .value("NONE", EMathTransformType::None);
    py::enum_<Box>(module, "Box")
        .value("ART", Box::Art)
        .value("TRIM", Box::Trim)
        .value("BLEED", Box::Bleed)
        .value("CROP", Box::Crop)
        .value("MEDIA", Box::Media);
}

/// Sends the log to the logger "mapanchor" as long as the interpreter runs.
void SendLogToPython() {
    py::handle logger = py::module_::import("logging").attr("getLogger")("mapanchor").release();
    BLogger::Instance()->SetSink([logger](ELogSeverity severity, const BString& text) {
        const py::gil_scoped_acquire acquired;
        try {
            logger.attr("log")(severity == ELogSeverity::Error ? 40 : 20, "%s", text);
        } catch (py::error_already_set& error) {
            error.discard_as_unraisable("mapanchor log");
        }
    });
    py::module_::import("atexit").attr("register")(
        py::cpp_function([] { BLogger::Instance()->SetSink({}); }));
}

}  // namespace

PYBIND11_MODULE(_mapanchor, module) {
    module.attr("__version__") = MAPANCHOR_VERSION;
    DefineFailures(module);
    DefineEnumerations(module);
    DefineReference(module);
    DefineSaving(module);
    SendLogToPython();
    const auto affine = EMathTransformType::Affine;
    module.def("read", &Read, py::arg("path"), py::arg("type") = py::none(), py::kw_only(),
               py::arg("width") = 0, py::arg("height") = 0, py::arg("fit") = affine,
               py::arg("strict_transform") = false, py::arg("strict_crs") = false,
               py::arg("box") = py::none(), py::arg("dpi") = py::none(), py::arg("source") = BString(),
               py::arg("page") = 1, py::arg("map") = BString(), py::arg("shown") = false,
               py::arg("password") = BString(), py::arg("strict_pdf") = false, py::arg("explain") = false);
    module.def("fit", &Fit, py::arg("points"), py::arg("kind") = affine, py::kw_only(), py::arg("width") = 0,
               py::arg("height") = 0);
}
