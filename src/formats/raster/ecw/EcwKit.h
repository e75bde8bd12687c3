#pragma once

// The ECW kit, or what stands in for it where a build has none.
#ifdef MAPANCHOR_WITH_ECW_SDK
#include <NCSECWClient.h>
#include <NCSErrors.h>
#else
#include "raster/ecw/NCSFile.h"
#endif
