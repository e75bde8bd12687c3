#include "export/WebMercatorText.h"

namespace MapAnchor {

Tellurion::BString RewriteWebMercator(Tellurion::BString wkt) {
    if (!wkt.StartsWith("PROJCS[\"WGS_84_Pseudo_Mercator\"")) return wkt;
    wkt.RemoveAll("PARAMETER[\"Auxiliary_Sphere_Type\",0],");
    // In this order: a later replacement sees the outcome of the earlier ones.
    constexpr const char* kReplacements[][2] = {
        {"WGS_84_Pseudo_Mercator", "WGS_1984_Web_Mercator"},
        {"GCS_WGS_1984", "GCS_WGS_1984_Major_Auxiliary_Sphere"},
        {"D_WGS_1984", "D_WGS_1984_Major_Auxiliary_Sphere"},
        {"SPHEROID[\"WGS_1984\"", "SPHEROID[\"WGS_1984_Major_Auxiliary_Sphere\""},
        {"PROJECTION[\"Mercator_Auxiliary_Sphere\"]", "PROJECTION[\"Mercator\"]"},
    };
    for (const auto& [from, to] : kReplacements)
        wkt.ReplaceAll(from, to);
    return wkt;
}

}  // namespace MapAnchor
