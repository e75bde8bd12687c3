#pragma once

#include <Tellurion/BPoint.h>
#include <Tellurion/BPointPair.h>
#include <Tellurion/BString.h>
#include <Tellurion/Export.h>

#include <vector>

namespace Tellurion {

/// One control point as it was measured: a position in the raster, with the fraction of a
/// pixel, and its position in a coordinate system. Column 0, row 0 is the outer corner of
/// the top left pixel; rows count downwards.
struct TELLURION_EXPORT BControlPoint {
    BString Name;         ///< may be empty
    double Column = 0.0;  ///< from the left edge, in pixels
    double Row = 0.0;     ///< from the top edge, in pixels
    BPoint World;         ///< in the units of the coordinate system
    bool Enabled = true;  ///< a disabled point is kept but takes no part in a fit

    /// The point with its pixel rounded to whole numbers, for kinds of file that hold no others.
    BPointPair Rounded() const;
    static BControlPoint From(const BPointPair& pair);  ///< the same point, exactly
    /// Rounds or takes over all points of a list.
    static std::vector<BPointPair> Round(const std::vector<BControlPoint>& points);
    static std::vector<BControlPoint> From(const std::vector<BPointPair>& pairs);  ///< as above
};

}  // namespace Tellurion
