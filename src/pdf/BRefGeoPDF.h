#pragma once

#include <Tellurion/BGeoReference.h>
#include <Tellurion/BParamList.h>
#include <Tellurion/BString.h>
#include <Tellurion/EMathTransformType.h>

namespace MapAnchor {

/// Geospatial PDF: the reference of page 1. Reached by type alone.
class BRefGeoPDF {
public:
    /// Fills the reference for a raster of that size that shows the page's crop box, or
    /// the box that the parameters name. Reports every failure by exception.
    static void Read(const Tellurion::BString& file, const unsigned int& flags,
                     Tellurion::BGeoReference& reference, Tellurion::EMathTransformType math_type, long width,
                     long height, const Tellurion::BParamList* params);

    /// Georeferences a PDF that exists, in place: its first page shows the raster of
    /// that size in pixels, at the resolution of the parameters (72 without). False
    /// when the reference gives too few points; the PDF then stands under the
    /// temporary name that the log tells.
    static bool Write(const Tellurion::BString& file, const Tellurion::BGeoReference& reference, long width,
                      long height, const Tellurion::BParamList* params);
    /// `file` null counts as empty; of `flags` the bit of value 2 makes a system that
    /// has no text a failure.
    static bool Write(const Tellurion::BString* file, unsigned char flags,
                      const Tellurion::BGeoReference& reference, long width, long height,
                      const Tellurion::BKeyValuePairs* params);
};

}  // namespace MapAnchor
