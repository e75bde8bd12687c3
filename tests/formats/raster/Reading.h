#pragma once

#include <MapAnchor/BReferenceFormats.h>

#include "Outcomes.h"

namespace MapAnchor {

/// What a read by name came to.
struct NamedRead {
    Thrown thrown;
    std::string kind;  ///< empty when nobody answered
    std::string used;
    Tellurion::BGeoReference reference;
};

inline NamedRead ReadByName(const std::string& file) {
    NamedRead read;
    Tellurion::BString used;
    read.thrown = WhatIsThrown([&] {
        read.kind = BReferenceFormats::Read(Tellurion::BString(file), read.reference, used, 0, 0,
                                            Tellurion::EMathTransformType::Affine, nullptr)
                        .StdStr();
    });
    read.used = used.StdStr();
    return read;
}

/// By the class itself: the front door does not read frames and rectangles by type.
template <class Format>
Thrown ReadTyped(const std::string& file, unsigned int flags, Tellurion::BGeoReference& reference) {
    return WhatIsThrown([&] { Format::Read(Tellurion::BString(file), flags, reference); });
}

/// A file with a system whose numbers make no affine.
template <class Format>
void ExpectSystemAlone(const std::string& file, const Thrown& strict) {
    const LogCapture log;
    Tellurion::BGeoReference typed, unused;
    EXPECT_EQ(ReadTyped<Format>(file, BMapAnchor::kStrictCoordSys, typed).type, "");
    ExpectThrown(ReadTyped<Format>(file, BMapAnchor::kStrictTransform, unused), strict);
    NamedRead named = ReadByName(file);
    EXPECT_EQ(named.thrown.type, "");
    for (const Tellurion::BGeoReference* reference : {&typed, &named.reference}) {
        EXPECT_FALSE(reference->HasMathTransform());
        EXPECT_EQ(CodeOf(*reference), "EPSG:4326");
    }
    EXPECT_TRUE(log.lines.empty());
}

/// Writing is refused on both roads, and a file that does not open is named.
template <class Format>
void ExpectReadOnly(const std::string& name) {
    const TempFolder folder;
    Tellurion::BGeoReference reference;
    const unsigned int flags = 0;
    const Thrown refused = {kNotSupported, "Bref" + name + "::Write",
                            "Writing of " + name + " file types is not supported."};
    ExpectThrown(WhatIsThrown([&] { Format::Write(Tellurion::BString("x"), reference); }), refused);
    ExpectThrown(WhatIsThrown([&] { Format::Write(Tellurion::BString("x"), flags, reference); }), refused);
    ExpectThrown(ReadTyped<Format>(folder / ".", 0, reference),
                 {kNoAccess, "BRef" + name + "::Read",
                  "Could not open the reference file <" + (folder / ".") + "> for reading."});
}

}  // namespace MapAnchor
