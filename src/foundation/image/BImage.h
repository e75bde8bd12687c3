#pragma once

#include <Tellurion/BString.h>
#include <Tellurion/Export.h>

namespace Tellurion {

/// Tells kinds of image data by their first bytes. Cheap, and safe on any file.
class TELLURION_EXPORT BImage {
public:
    /// True for the ISO 8211 files of ADRG that describe or hold an image: a general
    /// information, overview or image file. A transmittal header is none.
    static bool CheckIfADRGReader(const BString& path);
    /// True for an RPF file, which CADRG frames are, bare or wrapped in NITF.
    static bool CheckIfCADRGReader(const BString& path);
};

}  // namespace Tellurion
