#include "coordsys/WktTexts.h"

#include <string_view>

namespace Tellurion {
namespace {

// A text that is longer than this describes no system, and takes PROJ long to refuse.
constexpr std::size_t kLongestText = 100'000;

BString Export(PJ* crs, PJ_WKT_TYPE flavour) {
    const char* const options[] = {"MULTILINE=NO", nullptr};
    return BString(proj_as_wkt(Proj::ThreadContext(), crs, flavour, options));
}

}  // namespace

std::string CleanWkt(const BString& text) {
    if (text.GetLength() > kLongestText) return {};
    BString trimmed = text;
    if (trimmed.StartsWith(BString(std::u16string(u"\uFEFF"))))
        trimmed = trimmed.Right(trimmed.GetLength() - 1);
    const std::string cleaned = trimmed.Trim().StdStr();
    return cleaned.find('\0') == std::string::npos ? cleaned : std::string();
}

BString ExportWkt(PJ* crs) {
    return Export(crs, PJ_WKT1_GDAL);
}

BString ExportPrj(PJ* crs) {
    return Export(crs, PJ_WKT1_ESRI);
}

BString WebMercatorPrj() {
    const Proj::Object crs(
        proj_create_from_database(Proj::ThreadContext(), "EPSG", "3857", PJ_CATEGORY_CRS, 0, nullptr));
    BString text = crs ? ExportPrj(crs.get()) : BString();
    text.ReplaceAll("PROJCS[\"WGS_1984_Web_Mercator_Auxiliary_Sphere\"", "PROJCS[\"WGS_84_Pseudo_Mercator\"");
    text.ReplaceAll("[\"Auxiliary_Sphere_Type\",0.0]", "[\"Auxiliary_Sphere_Type\",0]");
    return text;
}

}  // namespace Tellurion
