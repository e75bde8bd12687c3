#pragma once

#include "names/CProjection.h"
#include "names/ErMapperNames.h"

#include <cstddef>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <vector>

namespace GeoCalc::DB {

/// The ER Mapper projections in the order of the database: the zones of UTM first, so
/// that a search meets their plain names before those of grids that equal one, then
/// by alphabet. What a row means is read once, when it is first asked for, since a search looks
/// at few of them.
class ErMapperProjections {
public:
    struct Entry {
        const ErMapperProjection* row;
        PJ::CProjection projection;
        int own_datum;
    };

    static const ErMapperProjections& Instance();

    std::vector<const Entry*> All() const;

    /// Those nearly equal to a projection, in order: what a walk through All() would
    /// find, at the cost of a look-up.
    std::vector<const Entry*> FindNearlyEqual(const PJ::CProjection& projection) const;

private:
    ErMapperProjections();
    const Entry* EntryOf(std::size_t row) const;
    void CollectAround(double meridian, int kind, std::vector<std::size_t>& found) const;

    struct Place {
        double meridian;
        std::size_t row;
    };

    std::vector<const ErMapperProjection*> rows_;
    mutable std::mutex mutex_;
    mutable std::vector<std::unique_ptr<const Entry>> entries_;  ///< null until asked for
    /// By kind, sorted by central meridian.
    std::unordered_map<int, std::vector<Place>> places_;
};

}  // namespace GeoCalc::DB
