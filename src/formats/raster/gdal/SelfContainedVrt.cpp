#include "raster/gdal/SelfContainedVrt.h"

#include <cpl_minixml.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <string_view>

namespace MapAnchor {
namespace {

struct TreeDeleter {
    void operator()(CPLXMLNode* tree) const noexcept { CPLDestroyXMLNode(tree); }
};

constexpr std::string_view kElements[] = {"VRTDataset", "SRS",           "GeoTransform", "GCPList",
                                          "GCP",        "Metadata",      "MDI",          "ColorInterp",
                                          "UnitType",   "NoDataValue",   "Description",  "Offset",
                                          "Scale",      "VRTRasterBand", "BlockXSize",   "BlockYSize"};
constexpr std::string_view kAttributes[] = {
    "rasterXSize", "rasterYSize", "dataType", "band", "key", "Projection", "dataAxisToSRSAxisMapping",
    "Id",          "Info",        "Pixel",    "Line", "X",   "Y",          "Z"};
/// A key of metadata that names a file.
constexpr std::string_view kOverview = "OVERVIEW_FILE";

template <class Words>
bool Has(const Words& words, std::string_view word) {
    return std::ranges::find(words, word) != std::end(words);
}

/// Deeper than such a text ever is.
constexpr int kDeepest = 8;

bool IsHarmless(const CPLXMLNode* node, int depth) {
    if (depth > kDeepest) return false;
    for (; node; node = node->psNext) {
        const std::string_view word = node->pszValue;
        const bool is_known = node->eType == CXT_Element     ? Has(kElements, word)
                              : node->eType == CXT_Attribute ? Has(kAttributes, word)
                                                             : word != kOverview;
        if (!is_known || !IsHarmless(node->psChild, depth + 1)) return false;
    }
    return true;
}

}  // namespace

bool IsSelfContainedVrt(const std::string& text) {
    const std::unique_ptr<CPLXMLNode, TreeDeleter> tree(CPLParseXMLString(text.c_str()));
    return tree && IsHarmless(tree.get(), 0);
}

}  // namespace MapAnchor
