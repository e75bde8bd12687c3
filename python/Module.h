#pragma once

#include "Texts.h"

#include <MapAnchor/BDiagnostic.h>
#include <Tellurion/BGeoReference.h>
#include <Tellurion/EReferenceType.h>

#include <vector>

/// A reference and what its reading came to.
struct PyReference {
    Tellurion::BGeoReference reference;
    Tellurion::BString kind;
    Tellurion::BString used_file;
    bool centre_anchored = false;
    std::vector<Tellurion::BString> files = {};
    long width = 0;  ///< of the raster; 0 when not known
    long height = 0;
    std::vector<MapAnchor::BDiagnostic> diagnostics = {};
};

/// Each defines its classes and functions in the module.
void DefineFailures(pybind11::module_& module);
void DefineReference(pybind11::module_& module);
