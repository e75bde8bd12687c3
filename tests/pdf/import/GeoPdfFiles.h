#pragma once

#include "PagePdf.h"

#include <string>

/// Small geospatial PDFs by their parts, each of which a test may replace.
namespace GeoPdf {

inline const std::string kUtm33 =
    "PROJCS[\"UTM 33N\",GEOGCS[\"WGS 84\",DATUM[\"WGS_1984\",SPHEROID[\"WGS 84\",6378137,298.257223563]],"
    "PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]],PROJECTION[\"Transverse_Mercator\"],"
    "PARAMETER[\"latitude_of_origin\",0],PARAMETER[\"central_meridian\",15],PARAMETER[\"scale_factor\",0."
    "9996],"
    "PARAMETER[\"false_easting\",500000],PARAMETER[\"false_northing\",0],UNIT[\"metre\",1]]";

/// The viewport dialect: a page of 612 by 792 points whose viewport has the corners
/// 15 to 16 degrees east, 47 to 48 north.
struct Viewport {
    std::string page = "/MediaBox [0 0 612 792]";
    std::string box = "[0 0 612 792]";
    std::string more_viewports = "";
    std::string measure_value = "4 0 R";
    std::string bounds = "/Bounds [0 0 0 1 1 1 1 0]";
    std::string gcs_value = "5 0 R";
    std::string gpts = "[47 15 48 15 48 16 47 16]";
    std::string lpts = "[0 0 0 1 1 1 1 0]";
    std::string system = "/Type /GEOGCS /EPSG 4326";

    std::string Measure() const {
        return "<< /Type /Measure /Subtype /GEO " + bounds + " /GCS " + gcs_value + " /GPTS " + gpts +
               " /LPTS " + lpts + " >>";
    }
    std::string Entry() const {
        return "<< /Type /Viewport /BBox " + box + " /Measure " + measure_value + " >>";
    }
    PagePdf Pdf() const {
        return PagePdf(page + " /VP [ " + Entry() + more_viewports + " ]")
            .Add(Measure())
            .Add("<< " + system + " >>");
    }
    std::string Text() const { return Pdf().Text(); }
};

/// The LGIDict dialect: a page of 600 by 800 points in UTM zone 33.
struct LGIDict {
    std::string page = "/MediaBox [0 0 600 800]";
    std::string ctm = "/CTM [(2) (0) (0) (2) (400000) (5200000)]";
    std::string registration = "";
    std::string neatline = "/Neatline [(0) (0) (0) (800) (600) (800) (600) (0)]";
    std::string projection =
        "<< /Type /Projection /ProjectionType (UT) /Datum (WGE) /Zone 33 /Hemisphere (N) >>";
    std::string description = "/Description (Map)";
    std::string more_dicts = "";

    std::string Entry() const {
        return "<< /Type /LGIDict /Version (2.1) " + ctm + " " + registration + " " + neatline + " " +
               description + " /Projection " + projection + " >>";
    }
    std::string Text() const { return PagePdf(page + " /LGIDict [ " + Entry() + more_dicts + " ]").Text(); }
};

}  // namespace GeoPdf
