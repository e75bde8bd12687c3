#pragma once

#include <MapAnchor/BMapAnchor.h>

#include "Thrown.h"

#include <string>

/// How a host calls the front door: by name or by type, with a raster of 200 by 100.
/// Each says what was thrown.
struct Roads {
    static constexpr long kWidth = 200;
    static constexpr long kHeight = 100;
    static constexpr unsigned int kStrict =
        MapAnchor::BMapAnchor::kStrictTransform | MapAnchor::BMapAnchor::kStrictCoordSys;

    static Thrown Read(const std::string& file, Tellurion::BGeoReference& reference,
                       Tellurion::EMathTransformType fit = Tellurion::EMathTransformType::Affine) {
        Tellurion::BString used;
        return WhatIsThrown([&] {
            MapAnchor::BMapAnchor::Read(Tellurion::BString(file), reference, used, kWidth, kHeight, fit,
                                        nullptr);
        });
    }
    static Thrown Read(Tellurion::EReferenceType type, const std::string& file,
                       Tellurion::BGeoReference& reference, unsigned int flags = 0,
                       Tellurion::EMathTransformType fit = Tellurion::EMathTransformType::Affine) {
        return WhatIsThrown([&] {
            MapAnchor::BMapAnchor::Read(type, Tellurion::BString(file), reference, kWidth, kHeight, fit,
                                        flags, nullptr);
        });
    }
    static Thrown Save(const std::string& file, const Tellurion::BGeoReference& reference,
                       const std::string& image = "image.tif", long width = kWidth, long height = kHeight) {
        return WhatIsThrown([&] {
            MapAnchor::BMapAnchor::Save(Tellurion::BString(file), reference, width, height,
                                        Tellurion::BString(image), nullptr);
        });
    }
    static Thrown Save(Tellurion::EReferenceType type, const std::string& file,
                       const Tellurion::BGeoReference& reference, unsigned int flags = 0,
                       const std::string& image = "image.tif", long width = kWidth, long height = kHeight) {
        return WhatIsThrown([&] {
            MapAnchor::BMapAnchor::Save(type, Tellurion::BString(file), reference, width, height,
                                        Tellurion::BString(image), flags, nullptr);
        });
    }
};
