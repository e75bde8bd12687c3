#pragma once

#include "common/points/StoreControlPoints.h"
#include "common/policy/Strictness.h"
#include "common/storing/StoreTransform.h"

#include "import/CMeasureDictionaryData.h"
#include "import/PageBoxes.h"

#include <Tellurion/BCoordSys.h>
#include <Tellurion/BException.h>
#include <Tellurion/BGeoReference.h>
#include <Tellurion/BParamList.h>
#include <Tellurion/BSharedPtr.h>

// What the read by the rules and the wide one do alike with the value that an importer filled.

namespace MapAnchor {

extern const FailureTexts kGeoPDFTexts;

/// The box that the host asks for, or `fallback`. A BReadParametersException for the bounding box.
PDFCropType CropTypeOf(const Tellurion::BParamList* params, PDFCropType fallback = PDFCropType::Media);

/// What the search for the coordinate system came to.
struct SystemSearch {
    Tellurion::BSharedPtr<Tellurion::BCoordSys> system;  ///< empty when nothing was found
    bool failed = false;  ///< it ended in an exception that the host can live with
};

/// By the text first, then by the code. A search that finds nothing is no failure, unless the
/// host is strict: then the log says so twice, since the exception comes by the handler.
SystemSearch StoreCoordSys(Tellurion::BGeoReference& reference,
                           const VellumLib::CMeasureDictionaryData::CoordSysPart& part, OnFailure on_failure);

/// Stores the terms; those that give no transform are logged, or thrown by the flag.
void StorePageAffine(Tellurion::BGeoReference& reference, const AffineTerms& terms, OnFailure on_failure);

[[noreturn]] void ThrowNoPoints();
/// For a point at that index, counted from 0.
[[noreturn]] void ThrowUncountable(std::size_t index);
[[noreturn]] void ThrowShortMatrix(std::size_t terms);
[[noreturn]] void ThrowNoBoxes();
[[noreturn]] void ThrowNoViewportBox();

}  // namespace MapAnchor
