#pragma once

#include <Tellurion/BGeoReference.h>
#include <Tellurion/BString.h>

namespace MapAnchor {

struct ReferenceFormat;

/// MrSID, and by name JPEG 2000 as well, as the MrSID kit reads them. The affine is
/// anchored at the centre of the top left pixel, as the kit states it; one that only
/// GDAL finds is anchored at the corner. There are never control points.
class BRefMrSID {
public:
    /// True when the file could be opened, whatever it says.
    static bool Read(const Tellurion::BString& file, Tellurion::BGeoReference& reference);
    /// Takes MrSID alone.
    static void Read(const Tellurion::BString& file, const unsigned int& flags,
                     Tellurion::BGeoReference& reference);
    /// Nothing can be written; both throw.
    [[noreturn]] static void Write(const Tellurion::BString& file, const Tellurion::BGeoReference& reference);
    [[noreturn]] static void Write(const Tellurion::BString& file, const unsigned int& flags,
                                   const Tellurion::BGeoReference& reference);

    static ReferenceFormat Format();
};

}  // namespace MapAnchor
