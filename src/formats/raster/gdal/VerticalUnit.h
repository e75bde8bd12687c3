#pragma once

#include <Tellurion/BGeoReference.h>
#include <Tellurion/BLinearUnit.h>
#include <Tellurion/BSharedPtr.h>

class GDALDataset;

namespace MapAnchor {

/// The unit of the heights that a raster of one band holds; empty when it states none
/// that is known.
Tellurion::BSharedPtr<Tellurion::BLinearUnit> ReadVerticalUnit(GDALDataset& raster);

/// True when the band took the reference's vertical unit. Gray bands are left alone,
/// though their unit is read.
bool WriteVerticalUnit(GDALDataset& raster, const Tellurion::BGeoReference& reference);

}  // namespace MapAnchor
