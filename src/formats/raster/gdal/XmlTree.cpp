#include "raster/gdal/XmlTree.h"

#include "common/points/ExactPoints.h"

#include <Tellurion/BControlPoint.h>
#include <Tellurion/Numbers.h>
#include <Tellurion/QuietGdal.h>
#include <Tellurion/RandomAccessFile.h>
#include <Tellurion/XmlText.h>

#include <cpl_conv.h>

#include <algorithm>

namespace MapAnchor {

using namespace Tellurion;

namespace {

void Remove(CPLXMLNode* parent, const char* name) {
    while (CPLXMLNode* const child = CPLGetXMLNode(parent, name)) {
        if (!CPLRemoveXMLChild(parent, child)) return;
        CPLDestroyXMLNode(child);
    }
}

void PutAttribute(CPLXMLNode* element, const char* name, const std::string& value) {
    CPLAddXMLAttributeAndValue(element, name, XmlCharacters(value).c_str());
}

void PutPoints(const std::vector<BControlPoint>& points, const std::string& system, CPLXMLNode* dataset) {
    CPLXMLNode* const list = CPLCreateXMLNode(dataset, CXT_Element, "GCPList");
    if (!system.empty()) PutAttribute(list, "Projection", system);
    CPLXMLNode* last = nullptr;
    for (const BControlPoint& point : points) {
        if (!point.Enabled) continue;
        CPLXMLNode* const element = CPLCreateXMLNode(nullptr, CXT_Element, "GCP");
        PutAttribute(element, "Id", point.Name.StdStr());
        for (const auto& [name, value] : {std::pair{"Pixel", point.Column},
                                          {"Line", point.Row},
                                          {"X", point.World.x},
                                          {"Y", point.World.y},
                                          {"Z", point.World.z}})
            PutAttribute(element, name, PrintShortest(value));
        // At its end, or the search for the end makes the list slow.
        if (last)
            CPLAddXMLSibling(last, element);
        else
            CPLAddXMLChild(list, element);
        last = element;
    }
}

void PutTerms(const BMathTransform& transform, CPLXMLNode* dataset) {
    double a, b, c, d, e, f;
    transform.GetAffineParameters(a, b, c, d, e, f);
    std::string text;
    for (const double term : {c, a, b, f, d, e})
        text += (text.empty() ? "" : ", ") + PrintShortest(term);
    CPLCreateXMLElementAndValue(dataset, "GeoTransform", text.c_str());
}

}  // namespace

XmlTree ReadXml(const BString& file) {
    constexpr std::size_t kMaxLength = std::size_t{16} << 20;
    const QuietGdal quiet;
    const RandomAccessFile in(file);
    if (!in.IsOpen() || in.Size() == 0 || in.Size() > kMaxLength) return nullptr;
    return XmlTree(CPLParseXMLString(in.Window(0, kMaxLength).c_str()));
}

std::string TextOfXml(const CPLXMLNode* tree) {
    char* const text = CPLSerializeXMLTree(tree);
    std::string copy = text ? text : "";
    CPLFree(text);
    return copy;
}

void PutPlacement(const BGeoReference& reference, CPLXMLNode* dataset) {
    for (const char* name : {"SRS", "GeoTransform", "GCPList"})
        Remove(dataset, name);
    const std::string system = reference.HasCoordSys() ? reference.CoordSys->ToWholeWKT().StdStr() : "";
    const std::vector<BControlPoint> points = ExactPoints::Of(reference.PointPairVector);
    const bool has_points =
        std::any_of(points.begin(), points.end(), [](const auto& point) { return point.Enabled; });
    if (has_points) return PutPoints(points, system, dataset);
    if (!system.empty()) CPLCreateXMLElementAndValue(dataset, "SRS", XmlCharacters(system).c_str());
    if (reference.HasMathTransform()) PutTerms(*reference.MathTransform, dataset);
}

}  // namespace MapAnchor
