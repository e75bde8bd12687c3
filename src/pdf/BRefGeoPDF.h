#pragma once

#include <Tellurion/BGeoReference.h>
#include <Tellurion/BParamList.h>
#include <Tellurion/BString.h>
#include <Tellurion/EMathTransformType.h>

namespace MapAnchor {

struct ReferenceFormat;

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

    /// Georeferences a PDF that exists, in place: its first page shows the raster of
    /// that size in pixels, at the resolution of the parameters (72 without). False
    /// when the reference gives too few points; the PDF then has the
    /// temporary name that the log states.
    static bool Write(const Tellurion::BString& file, const Tellurion::BGeoReference& reference, long width,
                      long height, const Tellurion::BParamList* params);
    /// `file` null counts as empty; of `flags` the bit of value 2 makes a system that
    /// has no text a failure.
    static bool Write(const Tellurion::BString* file, unsigned char flags,
                      const Tellurion::BGeoReference& reference, long width, long height,
                      const Tellurion::BKeyValuePairs* params);

    static ReferenceFormat Format();
};

}  // namespace MapAnchor
