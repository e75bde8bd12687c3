#pragma once

#include <MapAnchor/Export.h>

/// Marks what libMapAnchor exports to its own modules; hosts have no header of it.
#define MAPANCHOR_INTERNAL MAPANCHOR_EXPORT
