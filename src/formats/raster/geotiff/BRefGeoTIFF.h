#pragma once

#include <Tellurion/BGeoReference.h>
#include <Tellurion/BParamList.h>
#include <Tellurion/BString.h>

namespace MapAnchor {

struct ReferenceFormat;

/// GeoTIFF and what else GDAL opens. The affine is GDAL's geotransform, anchored at the
/// outer corner of the top left pixel, also where the file states its positions as
/// those of pixel centres. A file with control points has no other transform than the
/// one through them. Reading writes nothing, not even beside the file; writing leaves
/// the pixels as they are.
class BRefGeoTIFF {
public:
    static bool Read(const Tellurion::BString& file, Tellurion::BGeoReference& reference, long width,
                     long height);
    static void Read(const Tellurion::BString& file, const unsigned int& flags,
                     Tellurion::BGeoReference& reference, long width, long height);
    static bool Write(const Tellurion::BString& file, const Tellurion::BGeoReference& reference,
                      const Tellurion::BParamList* params = nullptr);
    static void Write(const Tellurion::BString& file, const unsigned int& flags,
                      const Tellurion::BGeoReference& reference,
                      const Tellurion::BParamList* params = nullptr);

    /// Of a BParamList: see BMapAnchor::kValReplaceSystem.
    static constexpr const char* kReplaceSystemKey = "MAP_ANCHOR_REPLACE_SYSTEM";

    static ReferenceFormat Format();
};

}  // namespace MapAnchor
