#pragma once

#include <MapAnchor/BReferenceFormats.h>

#include "Outcomes.h"

namespace MapAnchor {

/// The result of a read by name.
struct NamedRead {
    Thrown thrown;
    std::string kind;  ///< empty when no reader answered
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

/// By the class itself: the entry point does not read frames and rectangles by type.
template <class Format>
Thrown ReadTyped(const std::string& file, unsigned int flags, Tellurion::BGeoReference& reference) {
    return WhatIsThrown([&] { Format::Read(Tellurion::BString(file), flags, reference); });
}

/// A file with a system, whose numbers make no affine; and that the class only reads.
template <class Format>
void ExpectSystemAlone(const std::string& name, const std::string& file, const std::string& detail) {
    const LogCapture log;
    Tellurion::BGeoReference typed, unused;
    const std::string read = "BRef" + name + "::Read", write = "Bref" + name + "::Write";
    EXPECT_EQ(ReadTyped<Format>(file, BMapAnchor::kStrictCoordSys, typed).type, "");
    ExpectThrown(ReadTyped<Format>(file, BMapAnchor::kStrictTransform, unused), kInvalidTransform, read,
                 detail);
    const Tellurion::BGeoReference named = Good(file);
    EXPECT_FALSE(typed.HasMathTransform() || named.HasMathTransform());
    EXPECT_EQ(CodeOf(typed) + CodeOf(named), "EPSG:4326EPSG:4326");
    EXPECT_TRUE(log.lines.empty());

    const unsigned int flags = 0;
    const std::string refused = "Writing of " + name + " file types is not supported.";
    ExpectThrown(WhatIsThrown([&] { Format::Write(Tellurion::BString("x"), typed); }), kNotSupported, write,
                 refused);
    ExpectThrown(WhatIsThrown([&] { Format::Write(Tellurion::BString("x"), flags, typed); }), kNotSupported,
                 write, refused);
    ExpectThrown(ReadTyped<Format>("/tmp", 0, typed), kNoAccess, read,
                 "Could not open the reference file </tmp> for reading.");
}

}  // namespace MapAnchor
