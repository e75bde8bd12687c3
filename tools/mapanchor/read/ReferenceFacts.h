#pragma once

#include <Tellurion/BCoordSys.h>
#include <Tellurion/EMathTransformType.h>

namespace Tool {

/// Words for what the library numbers, the same in every renderer.
inline const char* WordFor(Tellurion::EMathTransformType type) {
    using Type = Tellurion::EMathTransformType;
    switch (type) {
        case Type::Affine:
            return "affine";
        case Type::Conformal:
            return "conformal";
        case Type::Polynomial2:
            return "poly2";
        case Type::Polynomial3:
            return "poly3";
        case Type::Projective:
            return "projective";
        case Type::ThinPlateSpline:
            return "tps";
        case Type::Bilinear:
            return "bilinear";
        case Type::None:
            return "none";
    }
    return "unknown";
}

inline const char* WordForKind(const Tellurion::BCoordSys& system) {
    switch (system.GetKind()) {
        case Tellurion::BCoordSys::kKindGeodetic:
            return "geodetic";
        case Tellurion::BCoordSys::kKindProjected:
            return "projected";
        default:
            return "other";
    }
}

}  // namespace Tool
