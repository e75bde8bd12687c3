#pragma once

#include "common/policy/SaveRefusal.h"

#include <Tellurion/BGeoReference.h>
#include <Tellurion/BString.h>

namespace MapAnchor {

struct ReferenceFormat;

/// BSB nautical charts: a text header, ended by Ctrl-Z, in front of the pixels. It
/// gives control points in degrees and a datum; an affine is fitted through the
/// points. A datum that nobody knows counts as NAD83. Read only.
class BRefKAP {
public:
    static constexpr SaveRefusal kSaveRefusal = {"BRefKAP::Write",
                                                 "Writing of KAP file types is not supported."};

    /// True when the header gave anything, control points included.
    static bool Read(const Tellurion::BString& file, Tellurion::BGeoReference& reference);
    /// A header of control points alone leaves the reference as it is.
    static void Read(const Tellurion::BString& file, const unsigned int& flags,
                     Tellurion::BGeoReference& reference);

    /// Both throw a BGeoReferenceNotSupportedException.
    [[noreturn]] static void Write(const Tellurion::BString& file, const Tellurion::BGeoReference& reference);
    [[noreturn]] static void Write(const Tellurion::BString& file, const unsigned int& flags,
                                   const Tellurion::BGeoReference& reference);

    static ReferenceFormat Format();
};

}  // namespace MapAnchor
