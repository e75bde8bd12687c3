#pragma once

#include <Tellurion/BString.h>
#include <Tellurion/Export.h>

namespace Tellurion {

/// Tells kinds of image data by their first bytes. Cheap, and safe on any file.
class TELLURION_EXPORT BImage {
public:
    /// True for an ISO 8211 file with the fields of ADRG: a general information file.
    static bool CheckIfADRGReader(const BString& path);
    /// True for an RPF file, which CADRG frames are.
    static bool CheckIfCADRGReader(const BString& path);
};

}  // namespace Tellurion
