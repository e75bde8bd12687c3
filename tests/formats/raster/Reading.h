#pragma once

#include <MapAnchor/BMapAnchor.h>
#include <MapAnchor/BReferenceFormats.h>

#include "Thrown.h"

#include <array>
#include <fstream>
#include <string>

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

inline Thrown ReadByType(Tellurion::EReferenceType type, const std::string& file,
                         Tellurion::BGeoReference& reference, unsigned int flags) {
    return WhatIsThrown([&] {
        BMapAnchor::Read(type, Tellurion::BString(file), reference, 0, 0,
                         Tellurion::EMathTransformType::Affine, flags, nullptr);
    });
}

using Terms = std::array<double, 6>;

inline Terms TermsOf(const Tellurion::BGeoReference& reference) {
    Terms t{};
    reference.MathTransform->GetAffineParameters(t[0], t[1], t[2], t[3], t[4], t[5]);
    return t;
}

inline std::string EpsgOf(const Tellurion::BGeoReference& reference) {
    return reference.HasCoordSys() ? reference.CoordSys->ToEPSGCode().StdStr() : "none";
}

/// The bytes that this process has read so far, from whatever file.
inline long BytesRead() {
    std::ifstream io("/proc/self/io");
    std::string label;
    long bytes = -1;
    io >> label >> bytes;
    return label == "rchar:" ? bytes : -1;
}

constexpr unsigned int kStrict = BMapAnchor::kStrictTransform | BMapAnchor::kStrictCoordSys;

}  // namespace MapAnchor
