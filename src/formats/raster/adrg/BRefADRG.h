#pragma once

#include "common/policy/SaveRefusal.h"

#include <Tellurion/BGeoReference.h>
#include <Tellurion/BString.h>

namespace MapAnchor {

struct ReferenceFormat;

/// ADRG distribution rectangles: an image and, beside it, a general information file
/// that places it on WGS 84. The affine starts at the centre of the top left pixel.
/// Read only.
class BRefADRG {
public:
    static constexpr SaveRefusal kSaveRefusal = {"BrefADRG::Write",
                                                 "Writing of ADRG file types is not supported."};

    /// Reads the general information file of the image `file` and says in
    /// `referenceFile` which that is: its last five characters replaced by "1.gen",
    /// or by "1.GEN" where only that exists. A name too short for that leaves
    /// `referenceFile` as it came, and that file is read.
    static bool Read(const Tellurion::BString& file, Tellurion::BGeoReference& reference,
                     Tellurion::BString& referenceFile);
    /// Reads `file` itself.
    static void Read(const Tellurion::BString& file, const unsigned int& flags,
                     Tellurion::BGeoReference& reference);

    /// Both throw a BGeoReferenceNotSupportedException.
    [[noreturn]] static void Write(const Tellurion::BString& file, const Tellurion::BGeoReference& reference);
    [[noreturn]] static void Write(const Tellurion::BString& file, const unsigned int& flags,
                                   const Tellurion::BGeoReference& reference);

    static ReferenceFormat Format();
};

}  // namespace MapAnchor
