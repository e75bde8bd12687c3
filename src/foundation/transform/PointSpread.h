#pragma once

#include "Fits.h"

namespace Tellurion {

/// The share of the raster's area that the hull of the pixels covers; 0 without a size.
double HullShareOf(const Positions& pixels, RasterSize raster);

/// The width of the pixels' spread across its longest direction, as a part of its length:
/// 0 for pixels on a line, 1 for a spread that is as wide as long.
double WidthOf(const Positions& pixels);

}  // namespace Tellurion
