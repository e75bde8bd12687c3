#pragma once

#include <MapAnchor/Internal.h>
#include <Tellurion/BControlPoint.h>
#include <Tellurion/BPointPair.h>

#include <vector>

namespace MapAnchor {

/// Control points with fractions of pixels beside a save. A reference holds whole pixels; while
/// one of these lives, writers of this thread whose kinds hold fractions find them here.
class MAPANCHOR_INTERNAL ExactPoints {
public:
    explicit ExactPoints(const std::vector<Tellurion::BControlPoint>& points);  ///< keeps the reference
    ~ExactPoints();
    ExactPoints(const ExactPoints&) = delete;
    ExactPoints& operator=(const ExactPoints&) = delete;

    /// The points of a reference, with the fractions where those that are known round to them.
    static std::vector<Tellurion::BControlPoint> Of(const std::vector<Tellurion::BPointPair>& pairs);
    /// The same with points that are given.
    static std::vector<Tellurion::BControlPoint> Join(const std::vector<Tellurion::BPointPair>& pairs,
                                                      const std::vector<Tellurion::BControlPoint>& exact);

private:
    const std::vector<Tellurion::BControlPoint>* outer_;
};

}  // namespace MapAnchor
