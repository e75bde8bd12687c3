#pragma once

#include <MapAnchor/Export.h>
#include <Tellurion/BString.h>

#include <vector>

namespace MapAnchor {

/// A rectangle of a PDF page in points, which count from the lower left.
struct MAPANCHOR_EXPORT BGeoPDFBox {
    double Left = 0.0;     ///< from the left edge of the page's space
    double Bottom = 0.0;   ///< from its lower edge
    double Right = 0.0;    ///< as Left
    double Top = 0.0;      ///< as Bottom
    bool Present = false;  ///< false: the file has none, the numbers mean nothing

    /// The size in whole pixels of a raster that fills the box, whose points are of 1/72 inch.
    /// False, with both left as they are, for a box that is missing or a size that no raster has.
    bool ToPixels(double dotsPerInch, long& width, long& height) const;
};

/// One map of a page: a viewport, or an entry of its "LGIDict".
struct MAPANCHOR_EXPORT BGeoPDFMap {
    Tellurion::BString Name;      ///< of the viewport or projection; may be empty
    BGeoPDFBox Box;               ///< what encloses its outline on the page
    double Area = 0.0;            ///< of its outline on the page, in square points
    Tellurion::BString CoordSys;  ///< name and code; empty when it is not understood
    bool InUse = false;           ///< the one that a read takes
    Tellurion::BString Fault;     ///< why it cannot be read; usually empty
};

/// The first page of a PDF as the reading of geospatial PDF sees it: what maps are on
/// it, which is read, and what prevents it. Nothing here is needed for a read.
class MAPANCHOR_EXPORT BGeoPDFPage {
public:
    /// How a page states its maps: viewports with measure dictionaries, or an "LGIDict".
    enum class EDialect : int { None = 0, Measure = 1, LGIDict = 2 };

    bool Loaded = false;                ///< the file is a PDF whose first page could be looked at
    bool Encrypted = false;             ///< it is encrypted, and so refused
    EDialect Dialect = EDialect::None;  ///< what a read would go by
    /// As the page's own dictionary has them, by the rules that a read follows.
    BGeoPDFBox MediaBox;
    BGeoPDFBox CropBox;            ///< the same of its crop box
    BGeoPDFBox BleedBox;           ///< the same of its bleed box
    BGeoPDFBox TrimBox;            ///< the same of its trim box
    BGeoPDFBox ArtBox;             ///< the same of its art box
    int Rotate = 0;                ///< degrees clockwise; a read refers to the unrotated page
    double UserUnit = 1.0;         ///< in 1/72 inch
    std::vector<BGeoPDFMap> Maps;  ///< in the order of the file

    /// What a read would be refused with, in the words of whoever refuses; usually empty.
    Tellurion::BString Fault;
    /// A sentence on what was expected in its place and what is there; may be empty.
    Tellurion::BString Explanation;

    /// The box that the crop type of a read shows; not Present when there is none.
    BGeoPDFBox BoxForCropType(int cropType) const;
    /// The same page with its boxes in points of 1/72 inch, whatever its UserUnit is.
    BGeoPDFPage InPoints() const;

    /// Never throws for what the file holds: faults are part of the result.
    static BGeoPDFPage Describe(const Tellurion::BString& file);
};

}  // namespace MapAnchor
