#pragma once

#include <vector>

namespace VellumLib {
class CPDFPage;
}

namespace MapAnchor {

/// The box of a page that a raster shows, by the numbers that hosts give.
enum class PDFCropType : int {
    Art = 0,
    Bounding = 1,  ///< refused
    Trim = 2,      ///< counts as the media box
    Bleed = 3,
    Crop = 4,
    Media = 5,
};

/// The boxes of a page as its own dictionary has them: left, bottom, right, top, but
/// of any length, and empty where there is none.
struct PageBoxes {
    std::vector<double> art;
    std::vector<double> trim;
    std::vector<double> bleed;
    std::vector<double> crop;
    std::vector<double> media;

    static PageBoxes Of(VellumLib::CPDFPage& page);

    /// The box of that type, else the media box; of four numbers, or empty.
    std::vector<double> Shown(PDFCropType type) const;
};

}  // namespace MapAnchor
