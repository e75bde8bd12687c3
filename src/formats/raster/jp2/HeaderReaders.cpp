#include "raster/jp2/HeaderReaders.h"

#include "raster/gdal/HasGdalDriver.h"

#include <algorithm>
#include <iterator>

namespace MapAnchor {
namespace {

constexpr const char* kOwn = "its own header reader";
#ifdef MAPANCHOR_WITH_MRSID_SDK
constexpr const char* kMrSid = "the MrSID kit";
#else
constexpr const char* kMrSid = kOwn;
#endif
#ifdef MAPANCHOR_WITH_ECW_SDK
constexpr const char* kEcw = "the ECW kit";
#else
constexpr const char* kEcw = kOwn;
#endif

constexpr const char* kJpeg2000Drivers[] = {"JP2OpenJPEG", "JP2KAK", "JP2ECW", "JP2MrSID", "JP2Lura"};

}  // namespace

const char* HeaderReaders::MrSid() {
    return kMrSid;
}
const char* HeaderReaders::Ecw() {
    return kEcw;
}
const char* HeaderReaders::Jpeg2000() {
    return kEcw;
}

const char* HeaderReaders::MissingForMrSid() {
    return HasGdalDriver("MrSID") ? nullptr : "GDAL's MrSID driver";
}

const char* HeaderReaders::MissingForJpeg2000() {
    const bool any = std::any_of(std::begin(kJpeg2000Drivers), std::end(kJpeg2000Drivers), HasGdalDriver);
    return any ? nullptr : "a JPEG 2000 driver of GDAL";
}

}  // namespace MapAnchor
