// The functions of GDAL that put the system of an LGIDict together, by their own names, but GDAL
// is loaded by the first call of one: most PDFs have no such dictionary.

#define CPL_DLL  // so that they are hidden

#include <Tellurion/LibraryOnDemand.h>

#include <cpl_conv.h>
#include <cpl_error.h>
#include <cpl_vsi.h>
#include <ogr_srs_api.h>

namespace {

Tellurion::LibraryOnDemand library(MAPANCHOR_LIBRARY, "The system of an LGIDict needs GDAL",
                                   MAPANCHOR_LIBRARIES_BELOW);

}  // namespace

#define FORWARD_FROM library

FORWARD_0(CPLErrorReset)
FORWARD_0(CPLGetErrorHandlerUserData)
FORWARD_0(CPLGetLastErrorMsg)
FORWARD_0(CPLGetLastErrorNo)
FORWARD_0(CPLGetLastErrorType)
FORWARD_0(CPLPopErrorHandler)
FORWARD_1(OSRDestroySpatialReference)
FORWARD_1(OSRNewSpatialReference)
FORWARD_1(VSIFree)
FORWARD_2(CPLPushErrorHandlerEx)
FORWARD_2(OSRExportToWkt)
FORWARD_2(OSRImportFromEPSG)
FORWARD_2(OSRSetAxisMappingStrategy)
FORWARD_2(OSRSetProjCS)
FORWARD_2(OSRSetProjection)
FORWARD_3(CPLErrorSetState)
FORWARD_3(OSRSetLinearUnits)
FORWARD_3(OSRSetLinearUnitsAndUpdateParameters)
FORWARD_3(OSRSetNormProjParm)
FORWARD_3(OSRSetStatePlane)
FORWARD_3(OSRSetUTM)
FORWARD_5(OSRSetStatePlaneWithUnits)
FORWARD_6(OSRSetPS)
FORWARD_8(OSRSetTOWGS84)
FORWARD_9(OSRSetHOM2PNO)
FORWARD_10(OSRSetGeogCS)
