#pragma once

#include "common/policy/SaveRefusal.h"

#include <Tellurion/BGeoReference.h>
#include <Tellurion/BString.h>

namespace MapAnchor {

struct ReferenceFormat;

/// Digital orthophoto quarter quadrangles with the old fixed-position header: an
/// affine and a UTM zone north on NAD27 in metres, also for a file that states
/// another datum. Read only, and only by name.
class BRefDOQQ {
public:
    static constexpr SaveRefusal kSaveRefusal = {"BrefDOQQ::Write",
                                                 "Writing of DOQQ file types is not supported."};

    /// True for every file that opens: what is no header reads as zeros, which make
    /// neither a transform nor a system.
    static bool Read(const Tellurion::BString& file, Tellurion::BGeoReference& reference);

    /// All three throw a BGeoReferenceNotSupportedException.
    [[noreturn]] static void Read(const Tellurion::BString& file, const unsigned int& flags,
                                  Tellurion::BGeoReference& reference);
    [[noreturn]] static void Write(const Tellurion::BString& file, const Tellurion::BGeoReference& reference);
    [[noreturn]] static void Write(const Tellurion::BString& file, const unsigned int& flags,
                                   const Tellurion::BGeoReference& reference);

    static ReferenceFormat Format();
};

}  // namespace MapAnchor
