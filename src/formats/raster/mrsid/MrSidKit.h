#pragma once

// The MrSID SDK, or what replaces it where a build has none.
#ifdef MAPANCHOR_WITH_MRSID_SDK
#include <J2KImageReader.h>
#include <MrSIDImageReader.h>
#include <lt_fileSpec.h>
#include <lti_geoCoord.h>
#include <lti_metadataDatabase.h>
#include <lti_metadataRecord.h>
#else
#include "raster/mrsid/LizardTech.h"
#endif
