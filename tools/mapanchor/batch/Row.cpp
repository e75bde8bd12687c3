#include "batch/Row.h"

#include "batch/Cell.h"
#include "batch/StacItem.h"
#include "read/Residuals.h"
#include "render/Feature.h"

#include <MapAnchor/BGeoPDFPages.h>
#include <MapAnchor/BMapAnchor.h>
#include <Tellurion/Numbers.h>

#include <algorithm>
#include <utility>

namespace Tool {

using MapAnchor::BMapAnchor;
using Tellurion::PrintShortest;

namespace {

std::string Line(const Json& json) {
    return ToText(json, CommonOptions());
}

std::string CsvLine(const ReadResult& result, const std::optional<Footprint>& footprint) {
    const auto system = result.reference.CoordSys;
    const auto rmse = ComputeResiduals(result).root_mean_square;
    const std::string fields[] = {
        CellText(result.file),
        result.Ok() ? "true" : "false",
        CellText(result.kind),
        result.reference.HasCoordSys() ? CellText(system->ToEPSGCode().StdStr()) : "",
        result.width ? std::to_string(*result.width) : "",
        result.height ? std::to_string(*result.height) : "",
        footprint ? PrintShortest(footprint->west) : "",
        footprint ? PrintShortest(footprint->south) : "",
        footprint ? PrintShortest(footprint->east) : "",
        footprint ? PrintShortest(footprint->north) : "",
        rmse ? PrintShortest(*rmse) : "",
        result.failure ? CellText(result.failure->type) : "",
        result.failure ? CellText(result.failure->Text()) : "",
    };
    std::string line;
    for (const std::string& field : fields)
        line += (&field == fields ? "" : ",") + CsvField(field);
    return line + "\n";
}

std::string TextOf(const ReadResult& result, const std::optional<Footprint>& footprint, RowFormat format) {
    constexpr const char* kRecordSeparator = "\x1e";
    switch (format) {
        case RowFormat::GeoJsonSequence:
            return kRecordSeparator + Line(FeatureJson(result, footprint));
        case RowFormat::Csv:
            return CsvLine(result, footprint);
        case RowFormat::Stac:
            return Line(StacItem(result, footprint));
        case RowFormat::JsonLines:
            break;
    }
    std::string text;
    WriteJson(result, CommonOptions(), [&text](std::string_view piece) { text += piece; });
    return text;
}

}  // namespace

std::string HeadingOf(RowFormat format) {
    if (format != RowFormat::Csv) return {};
    return "description,ok,referenceType,epsg,columns,rows,west,south,east,north,rmsePixels,error,detail\n";
}

Row MakeRow(ReadResult& result, const RowSettings& settings) {
    Row row;
    if (result.failure && result.failure->kind == FailureKind::Memory)
        result.failure->type = FailureTypes::kOutOfMemory.name;
    row.status = result.Status();
    // Only the formats with a place show what is found out about it.
    const bool has_place = settings.format != RowFormat::JsonLines;
    if (!has_place) row.text = TextOf(result, std::nullopt, settings.format);
    const auto footprint =
        has_place || settings.with_feature ? FootprintOf(result) : std::optional<Footprint>();
    if (has_place) row.text = TextOf(result, footprint, settings.format);
    if (settings.with_feature) row.feature = Line(FeatureJson(result, footprint));
    return row;
}

Row MakeRowsOfMaps(const std::string& name, const ReadOptions& options, const RowSettings& settings,
                   LogCollector& log) {
    ReadResult first = ReadFile(name, options, log);
    const auto list = first.page && !options.pdf_by_rules
                          ? MapAnchor::BGeoPDFPages::List(Tellurion::BString(name))
                          : MapAnchor::BGeoPDFPages();
    std::optional<Row> rows;
    for (const auto& [number, page] : list.Pages) {
        for (std::size_t map = 1; map <= page.Maps.size(); ++map) {
            ReadOptions one = options;
            one.pdf_page = static_cast<int>(number);
            one.params.SetInteger(BMapAnchor::kValPDFPage, one.pdf_page);
            one.params.SetString(BMapAnchor::kValPDFMap, Tellurion::BString(std::to_string(map)));
            ReadResult result = ReadFile(name, one, log);
            // The other maps have rows of their own.
            std::erase_if(result.diagnostics,
                          [](const Diagnostic& remark) { return remark.id == "other-maps"; });
            const Row row = MakeRow(result, settings);
            if (!rows) rows.emplace().status = row.status;
            if (rows->status != row.status) rows->status = ExitStatus::Warnings;
            rows->text += row.text;
            rows->feature += row.feature;
        }
    }
    return rows ? *rows : MakeRow(first, settings);
}

Row MakeLostRow(const std::string& name, const FailureType& type, const std::string& detail,
                const RowSettings& settings) {
    ReadResult result;
    result.file = name;
    result.failure = MakeFailure(type, detail);
    return MakeRow(result, settings);
}

std::string Pack(const Row& row) {
    std::string bytes = std::to_string(static_cast<int>(row.status)) + ' ' + std::to_string(row.text.size());
    return bytes.append("\n").append(row.text).append(row.feature);
}

Row Unpack(std::string bytes) {
    std::string_view rest = bytes;
    const auto take_number = [&rest] {
        long number = 0;
        Tellurion::ScanLong(rest, number);
        return number;
    };
    Row row;
    row.status = static_cast<ExitStatus>(take_number());
    const auto length = static_cast<std::size_t>(take_number());
    rest.remove_prefix(std::min<std::size_t>(1, rest.size()));
    row.feature = rest.substr(std::min(length, rest.size()));
    bytes.resize(bytes.size() - row.feature.size());
    bytes.erase(0, bytes.size() - std::min(length, bytes.size()));
    row.text = std::move(bytes);
    return row;
}

}  // namespace Tool
