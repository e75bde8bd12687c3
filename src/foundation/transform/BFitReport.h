#pragma once

#include <Tellurion/BControlPoint.h>
#include <Tellurion/BMathTransform.h>
#include <Tellurion/BString.h>
#include <Tellurion/EMathTransformType.h>
#include <Tellurion/Export.h>

#include <vector>

namespace Tellurion {

/// How far a fit is from one of its control points. Map units are those of the coordinate
/// system. Pixels are the same distance by the fit's slopes at the point: how far from the
/// point's pixel the fit has the point's position in the world, rightwards and downwards.
struct TELLURION_EXPORT BFitResidual {
    bool HasResidual = false;     ///< false where the fit has no value; the next six are then 0
    double Dx = 0.0;              ///< where the fit puts the pixel minus World.x, in map units
    double Dy = 0.0;              ///< the same of World.y
    double Residual = 0.0;        ///< the length of both, in map units
    double DxPixels = 0.0;        ///< where the fit has World, minus Column
    double DyPixels = 0.0;        ///< the same of Row
    double ResidualPixels = 0.0;  ///< the length of both

    /// The left-out residual is that of the fit through all other points, which the point
    /// itself cannot draw towards it. False for a disabled point and for one without which
    /// the others do not carry the fit; the next four are then 0.
    bool HasLeftOut = false;
    double LeftOutDx = 0.0;      ///< as Dx
    double LeftOutDy = 0.0;      ///< as Dy
    double LeftOut = 0.0;        ///< as Residual
    double LeftOutPixels = 0.0;  ///< as ResidualPixels

    /// The point stands out from the others by more than chance explains; see BFitReport.
    bool Suspect = false;
};

/// One fit among those that the points can carry.
struct TELLURION_EXPORT BFitAlternative {
    EMathTransformType Type = EMathTransformType::None;  ///< the kind of fit
    bool HasLeftOut = false;                             ///< false when there is nothing to compare it by
    double LeftOutRmsePixels = 0.0;  ///< root mean square of the left-out residuals, in pixels
    /// Its left-out residuals are larger than those of the best fit, by more than chance explains.
    bool Worse = false;
    bool Chosen = false;  ///< the simplest fit that is not Worse
    BString Reason;       ///< why there is nothing to compare it by; else empty
};

/// What is known of a fit through control points: how far it is from each of them, how well
/// it puts a point that it has not seen, which points stand out, and how well the points
/// are spread. Only enabled points count, disabled ones have residuals.
///
/// Suspects are found by the generalized extreme Studentized deviate test, in pixels: a set
/// of points with normal errors alone has a suspect in 1 or 2 of 100 cases. A spline, which
/// passes through each point, is judged by a spline that smooths. A polynomial or projective fit
/// is judged by a simpler fit where that explains the points as well. One error of 20 times the
/// noise is found in 95 of 100 cases or more from 8 points on, of a polynomial of second order
/// from 9, of a spline from 11 and of a polynomial of third order from 12; with fewer the points
/// do not show which of them is wrong. Where no fit follows the points, such as those of a folded
/// map, a point far from the fit may be marked though it is right.
class TELLURION_EXPORT BFitReport {
public:
    /// Fits as BMathTransform::Fit, which throws, and reports. `width` and `height` are the
    /// raster's size in pixels, 0 when unknown.
    static BFitReport Make(EMathTransformType type, const std::vector<BControlPoint>& points,
                           unsigned int width, unsigned int height);
    /// Of a transform that is given, such as one that was read: residuals alone, without
    /// left-out residuals and suspects.
    static BFitReport Of(const BMathTransform& transform, const std::vector<BControlPoint>& points,
                         unsigned int width, unsigned int height);

    /// The fits conformal, affine, projective, second and third order polynomial and thin
    /// plate spline, from simple to rich, compared by their left-out residuals. A spline or
    /// projective fit of more than 1,000 points takes long and is not compared.
    static std::vector<BFitAlternative> Compare(const std::vector<BControlPoint>& points, unsigned int width,
                                                unsigned int height);
    /// The kind of fit that is chosen among the alternatives. With three points or two, which
    /// leave nothing to compare, affine or conformal. Throws a BException when the points
    /// carry no fit at all.
    static EMathTransformType Choose(const std::vector<BFitAlternative>& alternatives,
                                     const std::vector<BControlPoint>& points);

    /// Scale, rotation and shear in a sentence such as "1 pixel is 2.5 by 2.5 m, turned by
    /// 0.31 degrees counterclockwise". `unit` follows the numbers and may be empty.
    BString DescribeShape(const BString& unit) const;

    BMathTransform Transform;             ///< the fit
    std::vector<BFitResidual> Residuals;  ///< one per point, disabled ones too
    int Used = 0;                         ///< the number of points that the fit is through

    bool HasRmse = false;     ///< false when no enabled point has a residual
    double Rmse = 0.0;        ///< root mean square of the residuals, in map units
    double RmsePixels = 0.0;  ///< the same in pixels
    double MaxPixels = 0.0;   ///< the largest residual, in pixels
    /// False for a fit with as many terms as the points have coordinates: its residuals are 0
    /// by construction and say nothing.
    bool HasRmseAdjusted = false;
    double RmseAdjustedPixels = 0.0;  ///< as RmsePixels, over the degrees of freedom that are left
    bool HasLeftOutRmse = false;      ///< false when some point has no left-out residual
    double LeftOutRmsePixels = 0.0;   ///< root mean square of the left-out residuals

    bool HasHullShare = false;  ///< false without the raster's size
    double HullShare = 0.0;     ///< of the raster, the part that the points' hull covers
    /// How wide the points are spread across their longest direction, as a part of the length:
    /// near 0 when they are near a line.
    double Width = 0.0;
    bool NearLine = false;  ///< Width is below 0.1: the fit is weak across that line

    bool HasShape = false;         ///< false where the fit has no slopes in the middle of the points
    double ScaleX = 0.0;           ///< map units per pixel along a row, in the middle of the points
    double ScaleY = 0.0;           ///< the same along a column
    double RotationDegrees = 0.0;  ///< of the rows from the x axis, counterclockwise
    double ShearDegrees = 0.0;     ///< how much the angle of rows and columns differs from 90 degrees
    bool Mirrored = false;         ///< rows and columns are as in a mirror

private:
    explicit BFitReport(const BMathTransform& transform);
};

}  // namespace Tellurion
