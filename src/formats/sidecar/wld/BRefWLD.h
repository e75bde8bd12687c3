#pragma once

#include <Tellurion/BGeoReference.h>
#include <Tellurion/BString.h>

namespace MapAnchor {

struct ReferenceFormat;

/// World files: six lines of text beside a raster that state an affine transform.
/// `file` is the world file itself. The overloads without flags answer by bool,
/// tolerate nearly everything, and carry the coordinate system in a prj file beside
/// the world file; those with flags report by exception and leave the prj alone.
class BRefWLD {
public:
    /// True when a transform was set. The prj file is read in any case.
    static bool Read(const Tellurion::BString& file, Tellurion::BGeoReference& reference);
    static void Read(const Tellurion::BString& file, const unsigned int& flags,
                     Tellurion::BGeoReference& reference);

    /// False when the reference has no transform. A reference without a coordinate
    /// system leaves an older prj file in place.
    static bool Write(const Tellurion::BString& file, const Tellurion::BGeoReference& reference);
    static void Write(const Tellurion::BString& file, const unsigned int& flags,
                      const Tellurion::BGeoReference& reference);

    static ReferenceFormat Format();
};

}  // namespace MapAnchor
