#pragma once

namespace MapAnchor {

/// Keys of the parameters that a host hands to the reading and the writing of PDF.
struct PdfParameters {
    static constexpr const char* kCropType = "MAP_ANCHOR_PDF_CROP_TYPE";
    static constexpr const char* kResolution = "MAP_ANCHOR_RESOLUTION";
};

}  // namespace MapAnchor
