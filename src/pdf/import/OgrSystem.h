#pragma once

#include <ogr_spatialref.h>

#include <memory>

namespace VellumLib {

// OGR is called through its functions in C, since these can be loaded on demand; see
// GdalForwarders.cpp.
struct OgrSystemDeleter {
    void operator()(OGRSpatialReference* srs) const noexcept {
        OSRDestroySpatialReference(OGRSpatialReference::ToHandle(srs));
    }
};
using OgrSystem = std::unique_ptr<OGRSpatialReference, OgrSystemDeleter>;

inline OGRSpatialReferenceH HandleOf(OGRSpatialReference& srs) {
    return OGRSpatialReference::ToHandle(&srs);
}

/// An empty system, longitude before latitude.
inline OgrSystem MakeOgrSystem() {
    OgrSystem srs(OGRSpatialReference::FromHandle(OSRNewSpatialReference(nullptr)));
    OSRSetAxisMappingStrategy(HandleOf(*srs), OAMS_TRADITIONAL_GIS_ORDER);
    return srs;
}

}  // namespace VellumLib
