#pragma once

#include "crs/CoordSysDefinition.h"

#include <Tellurion/BPoint.h>

#include <memory>
#include <mutex>
#include <optional>

namespace Tellurion {

/// From the coordinates of one system to those of another, across datums, with the easting
/// or longitude first on either side. Horizontal: a height is kept. Safe to use from several
/// threads.
class SystemTransformation {
public:
    SystemTransformation(const CoordSysDefinition& from, const CoordSysDefinition& to);
    /// The one between these two, from a cache.
    static std::shared_ptr<const SystemTransformation> Find(const CoordSysDefinition::Ptr& from,
                                                            const CoordSysDefinition::Ptr& to);

    bool IsPossible() const { return operation_ != nullptr; }
    /// False where there is no value; `point` is unchanged then.
    bool Apply(BPoint& point) const;

private:
    mutable std::mutex mutex_;
    Proj::Object operation_;
    /// Of a system whose projection PROJ does not compute as it is defined.
    std::optional<GeodeticConversion> from_projection_;
    std::optional<GeodeticConversion> to_projection_;
};

/// How far apart the two place the same coordinates, in metres on the Earth; infinite when
/// they cannot be compared. Datums are followed, the axes' order is not.
double DistanceBetween(const CoordSysDefinition::Ptr& first, const CoordSysDefinition::Ptr& second);

/// The same system by what it is: kind, datum, projection and heights, or by a shared code.
bool IsIdentical(const CoordSysDefinition& first, const CoordSysDefinition& second);

}  // namespace Tellurion
