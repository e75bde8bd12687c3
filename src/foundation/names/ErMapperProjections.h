#pragma once

#include "names/CProjection.h"
#include "names/ErMapperNames.h"

#include <cstddef>
#include <unordered_map>
#include <vector>

namespace GeoCalc::DB {

/// The ER Mapper projections in the order of the database: the zones of UTM first, so
/// that a search meets their plain names before those of grids that equal one, then
/// by alphabet. Made once, on first need, and never changed.
class ErMapperProjections {
public:
    struct Entry {
        const ErMapperProjection* row;
        PJ::CProjection projection;
        int own_datum;
    };

    static const ErMapperProjections& Instance();

    const std::vector<Entry>& All() const { return entries_; }

    /// Those nearly equal to a projection, in order: what a walk through All() would
    /// find, at the cost of a look-up.
    std::vector<const Entry*> FindNearlyEqual(const PJ::CProjection& projection) const;

private:
    ErMapperProjections();
    void CollectAround(double meridian, const PJ::CProjection& projection,
                       std::vector<const Entry*>& found) const;

    struct Place {
        double meridian;
        std::size_t entry;
    };

    std::vector<Entry> entries_;
    /// By kind, sorted by central meridian.
    std::unordered_map<int, std::vector<Place>> places_;
};

}  // namespace GeoCalc::DB
