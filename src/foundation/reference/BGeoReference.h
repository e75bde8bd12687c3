#pragma once

#include <Tellurion/BCoordSys.h>
#include <Tellurion/BLinearUnit.h>
#include <Tellurion/BMathTransform.h>
#include <Tellurion/BPointPair.h>
#include <Tellurion/BSharedPtr.h>
#include <Tellurion/EMathTransformType.h>
#include <Tellurion/Export.h>

#include <vector>

namespace Tellurion {

/// The georeferencing of one raster or page: a coordinate system, a transform from
/// pixels into it, and control points. Any of them may be missing. A copy shares
/// the coordinate system and the transform, which nobody changes.
///
/// The transform takes columns and rows; whether column 0, row 0 is the outer corner
/// of the top left pixel or its centre is the rule of the format that was read (the
/// corner, but for few). The pixel-as-point flag only says that the source states its
/// positions as those of pixel centres; it does not move the transform.
class TELLURION_EXPORT BGeoReference {
public:
    BGeoReference();
    BGeoReference(const BGeoReference&);
    BGeoReference& operator=(const BGeoReference&);
    virtual ~BGeoReference();

    bool HasCoordSys() const;       ///< CoordSys is not empty
    bool HasMathTransform() const;  ///< MathTransform is not empty
    /// Shares the system.
    void SetCoordSys(const BSharedPtr<BCoordSys>& coordSys);
    /// Stores a copy. A transform that is not valid leaves the reference without one.
    void SetMathTransform(const BMathTransform& transform);
    /// Stores points that have no transform: `type` says which fit was wished, and
    /// the reference stays without a transform.
    void SetPointPairVector(std::vector<BPointPair> pairs, EMathTransformType type);
    /// Stores points and a copy of the transform through them.
    void SetPointPairVectorAndMathTransform(std::vector<BPointPair> pairs, const BMathTransform& transform);

    bool HasVerticalUnit() const;                               ///< heights have a unit
    BSharedPtr<BLinearUnit> GetVerticalUnit() const;            ///< empty without one
    void SetVerticalUnit(const BSharedPtr<BLinearUnit>& unit);  ///< shares the unit

    bool IsPixelAsPointRegistered() const;            ///< see above; false until set
    void SetPixelAsPointRegistered(bool registered);  ///< changes nothing else

    std::vector<BPointPair> PointPairVector;   ///< the control points, switched off ones too
    BSharedPtr<BCoordSys> CoordSys;            ///< empty when there is none
    BSharedPtr<BMathTransform> MathTransform;  ///< empty when there is none

private:
    BSharedPtr<BLinearUnit> vertical_unit_;
    bool pixel_as_point_ = false;
};

}  // namespace Tellurion
