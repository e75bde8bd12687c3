#include "raster/gdal/XmlTree.h"

#include "common/points/ExactPoints.h"

#include <Tellurion/BControlPoint.h>
#include <Tellurion/Numbers.h>
#include <Tellurion/QuietGdal.h>
#include <Tellurion/RandomAccessFile.h>

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

bool IsContinuation(unsigned char byte) {
    return (byte & 0xC0U) == 0x80U;
}

/// The bytes of the character that begins there; 0 for none that XML has.
std::size_t LengthOfCharacter(std::string_view text) {
    const auto byte = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char first = byte(0);
    if (first < 0x80U) return first >= 0x20U || first == '\t' || first == '\n' || first == '\r' ? 1 : 0;
    const std::size_t length = first >= 0xF5U   ? 0
                               : first >= 0xF0U ? 4
                               : first >= 0xE0U ? 3
                               : first >= 0xC2U ? 2
                                                : 0;
    if (length == 0 || text.size() < length) return 0;
    for (std::size_t i = 1; i < length; ++i)
        if (!IsContinuation(byte(i))) return 0;
    const bool is_overlong = (first == 0xE0U && byte(1) < 0xA0U) || (first == 0xF0U && byte(1) < 0x90U);
    const bool is_surrogate = first == 0xEDU && byte(1) >= 0xA0U;
    const bool is_no_character = text.starts_with("\xEF\xBF\xBE") || text.starts_with("\xEF\xBF\xBF");
    const bool is_beyond = first == 0xF4U && byte(1) >= 0x90U;
    return is_overlong || is_surrogate || is_no_character || is_beyond ? 0 : length;
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

std::string XmlCharacters(std::string_view utf8) {
    std::string text;
    while (!utf8.empty()) {
        const std::size_t length = LengthOfCharacter(utf8);
        text += length == 0 ? std::string_view("?") : utf8.substr(0, length);
        utf8.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return text;
}

std::string XmlEscaped(std::string_view utf8) {
    std::string text;
    for (const char c : XmlCharacters(utf8)) {
        switch (c) {
            case '&':
                text += "&amp;";
                break;
            case '<':
                text += "&lt;";
                break;
            case '>':
                text += "&gt;";
                break;
            case '"':
                text += "&quot;";
                break;
            default:
                text += c;
        }
    }
    return text;
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
