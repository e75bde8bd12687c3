#pragma once

#include "crs/CoordSysDefinition.h"
#include "crs/LruCache.h"

namespace Tellurion {

/// The definitions of the texts seen last, for each way of reading a text; null for
/// one that cannot be understood. Never destroyed, so that it serves also while
/// statics are.
struct DefinitionCaches {
    using Cache = LruCache<CoordSysDefinition::Ptr>;
    static constexpr std::size_t kMostEntries = 256;

    Cache well_known_texts{kMostEntries};
    Cache arc_info_texts{kMostEntries};
    Cache map_info_clauses{kMostEntries};
    Cache codes{kMostEntries};
    Cache plain_names{kMostEntries};
    Cache er_mapper_names{kMostEntries};
    Cache proj_texts{kMostEntries};

    static DefinitionCaches& Instance();
};

/// Through the cache: well-known text, and EPSG systems by number.
CoordSysDefinition::Ptr FindByWkt(const BString& text);
CoordSysDefinition::Ptr FindByEpsg(int number);

}  // namespace Tellurion
