#include <MapAnchor/BControlPointFile.h>

#include "ControlPointParsers.h"

#include "common/scanning/Text.h"

#include <MapAnchor/BGeoReferenceWriteException.h>
#include <MapAnchor/BMapAnchor.h>
#include <Tellurion/BFileReplacement.h>
#include <Tellurion/BFileUtilities.h>
#include <Tellurion/BUnsupportedFileTypeException.h>

namespace MapAnchor {

using namespace Tellurion;

namespace {

constexpr const char* kSource = "BControlPointFile::Read";

/// RSF begins with a version and a count, TAB with its mark; other kinds by their names.
bool IsReference(const BString& file, std::string_view content) {
    const BString extension = BFileUtilities::GetExtension(file).ToLower();
    for (const char* known : {".rsf", ".tab", ".tif", ".tiff", ".kap"})
        if (extension == BString(known)) return true;
    return ContainsInAnyCase(content.substr(0, 64), "!table");
}

void ReadReference(const BString& file, BControlPointFile& result) {
    BGeoReference reference;
    BString used;
    BMapAnchor::Read(file, reference, used, 0, 0, EMathTransformType::None, nullptr);
    result.Format = BControlPointFile::EFormat::Reference;
    result.Points = BControlPoint::From(reference.PointPairVector);
    if (reference.HasCoordSys()) result.CoordSys = reference.CoordSys->ToWholeWKT();
}

void Parse(std::string_view text, const BString& order, const BString& system, BControlPointFile& file) {
    if (text.starts_with("\xef\xbb\xbf")) text.remove_prefix(3);
    const std::string_view start = WithoutLeadingBlanks(text);
    if (start.starts_with('{') || start.starts_with('[')) return ParsePointJson(text, file);
    if (start.starts_with('<')) return ParseGcpList(text, file);
    if (!start.starts_with('#') && text.find("-gcp ") != std::string_view::npos)
        return ParseGcpOptions(text, file);
    PointTable table = ParsePointTable(text, order.StdStr(), system);
    using EFormat = BControlPointFile::EFormat;
    file.Format = table.IsQgis ? EFormat::Points : EFormat::Table;
    file.OldHeader = table.OldHeader;
    file.Points = std::move(table.Points);
    file.CoordSys = table.CoordSys;
    file.Warnings = std::move(table.Warnings);
}

PointTable TableOf(const BControlPointFile& file) {
    return {.Points = file.Points, .CoordSys = file.CoordSys, .OldHeader = file.OldHeader};
}

}  // namespace

BControlPointFile BControlPointFile::Read(const BString& file, const BString& order) {
    return Read(file, order, BString());
}

BControlPointFile BControlPointFile::Read(const BString& file, const BString& order,
                                          const BString& coordSys) {
    BControlPointFile result;
    const std::string content = PointFileContent(file, kSource);
    if (IsReference(file, content)) {
        ReadReference(file, result);
    } else {
        try {
            Parse(content, order, coordSys, result);
        } catch (const PointFault& fault) {
            ThrowPointFault(file, fault, kSource);
        }
    }
    if (result.Points.empty()) ThrowNoPoints(file, kSource);
    if (!coordSys.IsEmpty()) result.CoordSys = coordSys;
    return result;
}

bool BControlPointFile::FormatForName(const BString& file, EFormat& format) {
    static constexpr std::pair<const char*, EFormat> kNames[] = {
        {".points", EFormat::Points},   {".csv", EFormat::Table},    {".tsv", EFormat::Table},
        {".geojson", EFormat::GeoJson}, {".json", EFormat::GeoJson}, {".gcps", EFormat::Gcps}};
    const BString extension = BFileUtilities::GetExtension(file).ToLower();
    for (const auto& [name, known] : kNames) {
        if (extension != BString(name)) continue;
        format = known;
        return true;
    }
    return false;
}

void BControlPointFile::Write(const BString& file) const {
    constexpr const char* kWriteSource = "BControlPointFile::Write";
    EFormat format = EFormat::Points;
    if (!FormatForName(file, format))
        throw BUnsupportedFileTypeException(
            kWriteSource,
            BString::Format(
                "File <%ls> has no name for control points: .points, .csv, .tsv, .geojson or .gcps.", file));
    const bool tabs = BFileUtilities::GetExtension(file).ToLower() == BString(".tsv");
    const std::string text = format == EFormat::Points  ? FormatQgisPoints(TableOf(*this))
                             : format == EFormat::Table ? FormatPointTable(TableOf(*this), tabs ? '\t' : ',')
                             : format == EFormat::GeoJson ? FormatPointJson(*this)
                                                          : FormatGcpOptions(*this);
    BFileReplacement out(file);
    if (!out.Open() || !out.Write(text) || !out.Commit())
        throw BGeoReferenceWriteException(
            kWriteSource, BString::Format("File <%ls> cannot be written: %ls.", file, out.GetFailure()));
}

}  // namespace MapAnchor
