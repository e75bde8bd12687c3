#pragma once

#include "wide/WideRemarks.h"

#include <Tellurion/BGeoReference.h>
#include <Tellurion/BParamList.h>
#include <Tellurion/BPoint.h>
#include <Tellurion/BString.h>
#include <Tellurion/EMathTransformType.h>

#include <vector>

namespace VellumLib {
class WideDocument;
}

namespace MapAnchor {

/// A control point with the place that the file gives it, which is not rounded to a pixel.
struct WidePoint {
    double column = 0.0;
    double row = 0.0;
    Tellurion::BPoint world;
};

/// What a wide read knows beyond the reference.
struct WideReading {
    std::vector<VellumLib::WideRemark> remarks;
    std::vector<VellumLib::WideOrigin> origins;
    std::vector<WidePoint> points;  ///< as many as the reference has; none of a matrix
    long width = 0;                 ///< of the raster, as given or as the page implies at 72 dpi
    long height = 0;
    long page = 1;  ///< counted from 1
    long map = 1;   ///< among those of the page, counted from 1
    Tellurion::BString map_name;
};

/// True where the host asks for a read beyond the rules.
bool IsWideRead(const Tellurion::BParamList* params);

/// Reads a geospatial PDF beyond the rules, by the parameters that PdfParameters names. The
/// transform goes through the exact positions of the points; the points of the reference
/// are rounded to pixels. Nothing is logged but what a read by the rules logs.
///
/// Throws a BFileContentNotValidException for a page without a map, a
/// BGeoReferenceReadException for a map that cannot be read, a BReadParametersException
/// for a page or map that the file does not have, and else what a read by the rules throws.
WideReading ReadWideGeoPDF(const Tellurion::BString& file, unsigned int flags,
                           Tellurion::BGeoReference& reference, Tellurion::EMathTransformType mathType,
                           long width, long height, const Tellurion::BParamList* params);
/// The same behind the opening of the file.
WideReading ReadWideGeoPDF(VellumLib::WideDocument& document, unsigned int flags,
                           Tellurion::BGeoReference& reference, Tellurion::EMathTransformType mathType,
                           long width, long height, const Tellurion::BParamList* params);

}  // namespace MapAnchor
