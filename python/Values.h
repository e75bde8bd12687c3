#pragma once

#include "Texts.h"

#include <MapAnchor/BDiagnostic.h>
#include <MapAnchor/BReading.h>

#include <pybind11/stl.h>

#include <optional>

/// A remark on a reading or saving, apart from the library's, so that Python can make one.
struct PyDiagnostic {
    Tellurion::BString id;
    Tellurion::BString severity;
    Tellurion::BString text;
    Tellurion::BString file;
    std::optional<long> line;
    Tellurion::BString place;
};

std::vector<PyDiagnostic> ToPython(const std::vector<MapAnchor::BDiagnostic>& diagnostics);

namespace pybind11::detail {

/// The class of mapanchor._values by that name.
inline object ValueClass(const char* name) {
    return module_::import("mapanchor._values").attr(name);
}

template <>
struct type_caster<PyDiagnostic> {
    PYBIND11_TYPE_CASTER(PyDiagnostic, const_name("Diagnostic"));

    bool load(handle source, bool) {
        if (!isinstance(source, ValueClass("Diagnostic"))) return false;
        const auto text = [source](const char* name) {
            return source.attr(name).template cast<Tellurion::BString>();
        };
        value = {text("id"),
                 text("severity"),
                 text("text"),
                 text("file"),
                 source.attr("line").cast<std::optional<long>>(),
                 text("place")};
        return true;
    }

    static handle cast(const PyDiagnostic& d, return_value_policy, handle) {
        return ValueClass("Diagnostic")(d.id, d.severity, d.text, d.file, d.line, d.place).release();
    }
};

template <>
struct type_caster<MapAnchor::BReading::Origin> {
    using Origin = MapAnchor::BReading::Origin;
    PYBIND11_TYPE_CASTER(Origin, const_name("Origin"));

    bool load(handle source, bool) {
        if (!isinstance(source, ValueClass("Origin"))) return false;
        const auto text = [source](const char* name) {
            return source.attr(name).template cast<Tellurion::BString>();
        };
        value = {text("value"), text("file"), text("place")};
        return true;
    }

    static handle cast(const Origin& origin, return_value_policy, handle) {
        return ValueClass("Origin")(origin.Value, origin.File, origin.Place).release();
    }
};

}  // namespace pybind11::detail
