#include "raster/gdal/AuxiliaryReference.h"

#include "common/policy/ReadNotes.h"
#include "raster/gdal/XmlTree.h"

#include <Tellurion/Numbers.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <string_view>

namespace MapAnchor {

using Tellurion::BString;

namespace {

/// GDAL's six numbers with commas between them.
std::optional<AffineTerms> ParseTerms(std::string_view text) {
    std::array<double, 6> gt{};
    for (double& number : gt) {
        if (!Tellurion::ScanDouble(text, number)) return std::nullopt;
        const std::size_t next = text.find_first_not_of(" \t\r\n,");
        text.remove_prefix(std::min(next, text.size()));
    }
    return AffineTerms{gt[1], gt[2], gt[0], gt[4], gt[5], gt[3]};
}

double NumberOf(CPLXMLNode* node, const char* key) {
    return Tellurion::ParseDouble(CPLGetXMLValue(node, key, "0"));
}

long WholePixel(double position) {
    constexpr double kMax = 0x7FFFFFFF;
    return std::isnan(position) ? 0 : static_cast<long>(std::clamp(position, -kMax, kMax));
}

void ReadPoints(CPLXMLNode* list, const BString& file, GdalReference& out) {
    DroppedFractions dropped;
    for (CPLXMLNode* node = list ? list->psChild : nullptr; node; node = node->psNext) {
        if (node->eType != CXT_Element || std::string_view(node->pszValue) != "GCP") continue;
        const double column = NumberOf(node, "Pixel");
        const double row = NumberOf(node, "Line");
        dropped.Count(column, row, WholePixel(column), WholePixel(row));
        out.points.emplace_back(WholePixel(column), WholePixel(row), NumberOf(node, "X"), NumberOf(node, "Y"),
                                NumberOf(node, "Z"), CPLGetXMLValue(node, "Id", ""), true);
        out.exact_points.push_back(Tellurion::BControlPoint::From(out.points.back()));
        out.exact_points.back().Column = column;
        out.exact_points.back().Row = row;
    }
    dropped.Report(file);
    out.point_count = static_cast<int>(out.points.size());
}

void NoteOrigins(const BString& file, const GdalReference& stated, bool system_of_points) {
    ReadNotes* const notes = ReadNotes::Explaining();
    if (!notes) return;
    for (const char* value : {"pixel size", "rotation", "position"})
        if (stated.terms) notes->AddOrigin(value, file, "element GeoTransform");
    if (!stated.points.empty()) notes->AddOrigin("points", file, "element GCPList");
    if (!stated.well_known_texts.empty())
        notes->AddOrigin("system", file, system_of_points ? "element GCPList, Projection" : "element SRS");
}

}  // namespace

std::optional<GdalReference> ReadAuxiliaryReference(const BString& file) {
    const XmlTree tree = ReadXml(file);
    CPLXMLNode* const dataset = tree ? CPLGetXMLNode(tree.get(), "=PAMDataset") : nullptr;
    if (!dataset) return std::nullopt;
    GdalReference out;
    CPLXMLNode* const list = CPLGetXMLNode(dataset, "GCPList");
    out.terms = ParseTerms(CPLGetXMLValue(dataset, "GeoTransform", ""));
    if (!out.terms) ReadPoints(list, file, out);
    for (const char* text :
         {CPLGetXMLValue(dataset, "SRS", ""), list ? CPLGetXMLValue(list, "Projection", "") : ""})
        if (*text) out.well_known_texts.emplace_back(text);
    NoteOrigins(file, out, list != nullptr && *CPLGetXMLValue(dataset, "SRS", "") == '\0');
    const bool states_nothing = !out.terms && out.points.empty() && out.well_known_texts.empty();
    return states_nothing ? std::nullopt : std::optional(std::move(out));
}

}  // namespace MapAnchor
