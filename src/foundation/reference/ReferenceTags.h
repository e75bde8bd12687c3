#pragma once

#include <Tellurion/BString.h>
#include <Tellurion/Export.h>

namespace Tellurion {

/// The dotted lower-case extension of each reference format, for comparison with a
/// lower-cased extension. The tag of world files is that of a TIFF's.
TELLURION_EXPORT extern const BString REFERENCE_RSF_TAG;   ///< .rsf
TELLURION_EXPORT extern const BString REFERENCE_WLD_TAG;   ///< .tfw
TELLURION_EXPORT extern const BString REFERENCE_TIF_TAG;   ///< .tif
TELLURION_EXPORT extern const BString REFERENCE_TIFF_TAG;  ///< .tiff
TELLURION_EXPORT extern const BString REFERENCE_TAB_TAG;   ///< .tab
TELLURION_EXPORT extern const BString REFERENCE_ERS_TAG;   ///< .ers
TELLURION_EXPORT extern const BString REFERENCE_DOQ_TAG;   ///< .doq
TELLURION_EXPORT extern const BString REFERENCE_KAP_TAG;   ///< .kap
TELLURION_EXPORT extern const BString REFERENCE_SID_TAG;   ///< .sid
TELLURION_EXPORT extern const BString REFERENCE_ECW_TAG;   ///< .ecw
TELLURION_EXPORT extern const BString REFERENCE_JP2_TAG;   ///< .jp2

}  // namespace Tellurion
