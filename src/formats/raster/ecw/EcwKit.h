#pragma once

// The ECW SDK, or what replaces it where a build has none.
#ifdef MAPANCHOR_WITH_ECW_SDK
#include <NCSECWClient.h>
#include <NCSErrors.h>
#else
#include "raster/ecw/NCSFile.h"
#endif
