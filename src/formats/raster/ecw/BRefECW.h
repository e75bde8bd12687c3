#pragma once

#include <Tellurion/BGeoReference.h>
#include <Tellurion/BString.h>

namespace MapAnchor {

struct ReferenceFormat;

/// ECW, and JPEG 2000 as far as the ECW kit can tell it: not rotated, rows going
/// south. The affine is anchored at the outer corner of the top left pixel. There are
/// never control points.
class BRefECW {
public:
    /// False for a file without a position, too.
    static bool Read(const Tellurion::BString& file, Tellurion::BGeoReference& reference);
    /// A file without a position is no failure.
    static void Read(const Tellurion::BString& file, const unsigned int& flags,
                     Tellurion::BGeoReference& reference);
    /// Nothing can be written; both throw.
    [[noreturn]] static void Write(const Tellurion::BString& file, const Tellurion::BGeoReference& reference);
    [[noreturn]] static void Write(const Tellurion::BString& file, const unsigned int& flags,
                                   const Tellurion::BGeoReference& reference);

    static ReferenceFormat Format();
    static ReferenceFormat Jpeg2000Format();
};

}  // namespace MapAnchor
