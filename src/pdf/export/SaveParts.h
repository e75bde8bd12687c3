#pragma once

#include "objects/CPDFPathPoint.h"

#include <Tellurion/BCoordSys.h>
#include <Tellurion/BGeoReference.h>
#include <Tellurion/BParamList.h>
#include <Tellurion/BString.h>

#include <vector>

// What every save of a geospatial PDF does with the reference that it gets.

namespace MapAnchor {

/// Places on the page in points, from the top left, and their longitudes (x) and latitudes (y).
struct TiePoints {
    std::vector<VellumLib::CPDFPathPoint> pixels;
    std::vector<VellumLib::CPDFPathPoint> worlds;
};

double PointsPerPixel(const Tellurion::BKeyValuePairs* params);
/// A page without extent, or one that a resolution of zero blows up, has no place for a point.
void RequirePageSize(double width, double height);
void RequireReference(const Tellurion::BGeoReference& reference);
/// In ESRI's words; may be empty where `flags` do not insist on it.
Tellurion::BString SystemText(const Tellurion::BCoordSys& system, unsigned char flags);
/// Empty where there is none.
Tellurion::BString SystemCode(const Tellurion::BCoordSys& system);
// Names that the file can do without; empty where there is none.
Tellurion::BString NameOf(const Tellurion::BCoordSys& system);
Tellurion::BString UnitNameOf(const Tellurion::BCoordSys& system);
/// The reference's own points, or four that stand for the transform. False where there are too few.
/// Without `to_geodetic` the system's own positions are longitudes and latitudes.
bool CollectTiePoints(const Tellurion::BGeoReference& reference, bool to_geodetic, double scale, long width,
                      long height, TiePoints& points);

}  // namespace MapAnchor
