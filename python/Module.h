#pragma once

#include "Texts.h"

#include <Tellurion/BGeoReference.h>
#include <Tellurion/EReferenceType.h>

/// A reference and what its reading came to.
struct PyReference {
    Tellurion::BGeoReference reference;
    Tellurion::BString kind;
    Tellurion::BString used_file;
    bool centre_anchored = false;
};

/// Each defines its classes and functions in the module.
void DefineFailures(pybind11::module_& module);
void DefineReference(pybind11::module_& module);
