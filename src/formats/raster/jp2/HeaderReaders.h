#pragma once

namespace MapAnchor {

/// Who reads the formats of the closed kits in this build, and what of GDAL this
/// machine lacks for them.
struct HeaderReaders {
    static const char* MrSid();
    static const char* Ecw();
    static const char* Jpeg2000();

    /// Null when nothing is missing.
    static const char* MissingForMrSid();
    static const char* MissingForJpeg2000();
};

}  // namespace MapAnchor
