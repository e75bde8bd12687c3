#include "Module.h"

#include <MapAnchor/BGeoReferenceWriteException.h>
#include <MapAnchor/BMapAnchor.h>
#include <MapAnchor/BReferenceFormats.h>
#include <MapAnchor/BSaving.h>
#include <Tellurion/BFileUtilities.h>

#include <pybind11/stl.h>

#include <cmath>
#include <limits>
#include <optional>

namespace py = pybind11;
using namespace Tellurion;
using MapAnchor::BMapAnchor;
using MapAnchor::BSaving;
using MapAnchor::BSavingOptions;

namespace {

std::optional<EReferenceType> TypeOf(const BString& file, std::optional<EReferenceType> type) {
    for (const MapAnchor::BReferenceFormat& format : MapAnchor::BReferenceFormats::List())
        if (!type && format.IsNamedByType(file)) return format.GetType();
    return type;
}

/// None where nothing could be compared.
std::optional<double> Known(double distance) {
    return std::isnan(distance) ? std::nullopt : std::optional(distance);
}

BSaving Write(const PyReference& reference, const py::object& path, std::optional<EReferenceType> type,
              long width, long height, const py::object& image_name, bool strict_transform, bool strict_crs,
              std::optional<double> dpi, bool verify, std::optional<double> tolerance, bool require_exact,
              bool overwrite, bool sync) {
    const BString file = PathOf(path);
    BSavingOptions options;
    type = TypeOf(file, type);
    if (type) options.SetType(*type);
    options.SetImageName(PathOf(image_name));
    options.SetFlags(Flags(strict_transform, strict_crs));
    const bool knows_size = width > 0 && height > 0;
    options.SetSize(knows_size ? width : reference.width, knows_size ? height : reference.height);
    options.SetCentreAnchored(reference.centre_anchored);
    BParamList params = options.GetParams();
    if (dpi) params.SetDouble(BMapAnchor::kValPDFResolution, *dpi);
    options.SetParams(params);
    options.SetVerifies(verify);
    if (tolerance) options.SetTolerance(*tolerance, std::numeric_limits<double>::infinity());
    options.SetRequiresExact(require_exact);
    options.SetOverwrites(overwrite);
    options.SetSyncs(sync);
    // Another thread may change the object meanwhile; a copy shares what nobody changes.
    const BGeoReference copy = reference.reference;
    std::optional<BSaving> saving;
    Guarded<MapAnchor::BGeoReferenceWriteException>("mapanchor.write",
                                                    [&] { saving = BSaving::Of(file, copy, options); });
    return *saving;
}

}  // namespace

void DefineSaving(py::module_& module) {
    const auto proof = [](const BSaving& self) { return self.GetProof(); };
    py::class_<BSaving>(module, "Saving")
        .def_property_readonly("taken_back", &BSaving::IsTakenBack)
        .def_property_readonly("verified", [proof](const BSaving& self) { return proof(self).IsRead(); })
        .def_property_readonly("exact", [proof](const BSaving& self) { return proof(self).IsExact(); })
        .def_property_readonly("confirmed_by_gdal",
                               [proof](const BSaving& self) { return proof(self).IsConfirmedByGdal(); })
        .def_property_readonly("pixels",
                               [proof](const BSaving& self) { return Known(proof(self).GetPixels()); })
        .def_property_readonly("metres",
                               [proof](const BSaving& self) { return Known(proof(self).GetMetres()); })
        .def_property_readonly("same_crs",
                               [proof](const BSaving& self) { return proof(self).IsSameSystem(); })
        .def_property_readonly("text", [proof](const BSaving& self) { return proof(self).GetText(); })
        .def_property_readonly("diagnostics",
                               [](const BSaving& self) { return ToPython(self.GetDiagnostics()); })
        .def("__repr__", [proof](const BSaving& self) {
            return BString("<mapanchor.Saving: " + proof(self).GetText().StdStr() + ">");
        });
    module.def("write", &Write, py::arg("reference"), py::arg("path"), py::arg("type") = py::none(),
               py::kw_only(), py::arg("width") = 0, py::arg("height") = 0, py::arg("image_name") = "",
               py::arg("strict_transform") = false, py::arg("strict_crs") = false,
               py::arg("dpi") = py::none(), py::arg("verify") = true, py::arg("tolerance") = py::none(),
               py::arg("require_exact") = false, py::arg("overwrite") = true, py::arg("sync") = true);
}
