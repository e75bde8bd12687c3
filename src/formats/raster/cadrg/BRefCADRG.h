#pragma once

#include "common/policy/SaveRefusal.h"

#include <Tellurion/BGeoReference.h>
#include <Tellurion/BString.h>

namespace MapAnchor {

struct ReferenceFormat;

/// CADRG frames: RPF files, usually wrapped in NITF, whose coverage section gives the
/// corners on WGS 84 in degrees. The affine starts at the centre of the top left
/// pixel. Read only.
class BRefCADRG {
public:
    static constexpr SaveRefusal kSaveRefusal = {"BrefCADRG::Write",
                                                 "Writing of CADRG file types is not supported."};

    /// True when the coverage is good, whatever became of the transform and the system.
    static bool Read(const Tellurion::BString& file, Tellurion::BGeoReference& reference);
    static void Read(const Tellurion::BString& file, const unsigned int& flags,
                     Tellurion::BGeoReference& reference);

    /// Both throw a BGeoReferenceNotSupportedException.
    [[noreturn]] static void Write(const Tellurion::BString& file, const Tellurion::BGeoReference& reference);
    [[noreturn]] static void Write(const Tellurion::BString& file, const unsigned int& flags,
                                   const Tellurion::BGeoReference& reference);

    static ReferenceFormat Format();
};

}  // namespace MapAnchor
