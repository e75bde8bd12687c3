#pragma once

#include <Tellurion/BGeoReference.h>
#include <Tellurion/BParamList.h>
#include <Tellurion/BString.h>
#include <Tellurion/EMathTransformType.h>

namespace MapAnchor {

/// Geospatial PDF: the first page of a document, shown by a raster of one of its boxes.
class BRefGeoPDF {
public:
    /// Fills `reference` in place, control points with a fitted transform or an affine.
    /// False where the page has nothing to give though nothing is wrong with the file:
    /// a count of points that does not match, a missing coordinate system. What PoDoFo
    /// makes of the file leaves as its PdfError, which is no std::exception.
    static bool Read(const Tellurion::BString& file, const unsigned int& flags,
                     Tellurion::BGeoReference& reference, Tellurion::EMathTransformType mathType, long width,
                     long height, const Tellurion::BParamList* params);
    static bool Read(const Tellurion::BString& file, Tellurion::BGeoReference& reference,
                     Tellurion::EMathTransformType mathType, long width, long height,
                     const Tellurion::BParamList* params);
};

}  // namespace MapAnchor
