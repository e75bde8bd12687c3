#pragma once

#include "Texts.h"

#include <MapAnchor/BDiagnostic.h>
#include <MapAnchor/BReading.h>
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
    std::vector<MapAnchor::BReading::Origin> origins = {};
};

/// A str, bytes or os.PathLike as the file system has it.
Tellurion::BString PathOf(const pybind11::object& path);
unsigned int Flags(bool strict_transform, bool strict_crs);

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
void DefineReference(pybind11::module_& module);
void DefineSaving(pybind11::module_& module);
