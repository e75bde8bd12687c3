#pragma once

namespace MapAnchor {

/// Keys of the parameters that a host hands to the reading and the writing of PDF.
struct PdfParameters {
    static constexpr const char* kCropType = "MAP_ANCHOR_PDF_CROP_TYPE";
    static constexpr const char* kResolution = "MAP_ANCHOR_RESOLUTION";
    /// Not 0: read what the rules refuse too, and say which rule the file does not follow; save
    /// without harm to what is in the file.
    static constexpr const char* kWide = "MAP_ANCHOR_PDF_WIDE";
    /// The page, counted from 1; of a wide read or save.
    static constexpr const char* kPage = "MAP_ANCHOR_PDF_PAGE";
    // These count in a wide read alone.
    /// The map of the page: its name, its number from 1, or "largest".
    static constexpr const char* kMap = "MAP_ANCHOR_PDF_MAP";
    /// Not 0: the raster shows the page as viewers do, turned and cropped.
    static constexpr const char* kShown = "MAP_ANCHOR_PDF_SHOWN";
    /// Opens a file that is encrypted with AES-256; without it the empty password is tried.
    static constexpr const char* kPassword = "MAP_ANCHOR_PDF_PASSWORD";
    // These count in a save beyond the rules alone.
    /// Appends the changes: 0 never, 1 always, 2 where writing the whole file would break something.
    static constexpr const char* kIncremental = "MAP_ANCHOR_PDF_INCREMENTAL";
    /// Not 0: a system that ESRI's text cannot describe is written in well-known text 2.
    static constexpr const char* kWkt2 = "MAP_ANCHOR_PDF_WKT2";
    /// The part of the page that the map covers, "left bottom right top" in points of 1/72 inch
    /// from the lower left corner of the media box; without it the raster.
    static constexpr const char* kFrame = "MAP_ANCHOR_PDF_FRAME";
    /// Not 0: the page keeps its maps, and this one comes last. Always an update.
    static constexpr const char* kAdd = "MAP_ANCHOR_PDF_ADD";
    /// The name of the viewport, "AllLayers" without it.
    static constexpr const char* kMapName = "MAP_ANCHOR_PDF_MAP_NAME";
};

}  // namespace MapAnchor
