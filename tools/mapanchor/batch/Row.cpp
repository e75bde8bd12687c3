#include "batch/Row.h"

#include "Feature.h"
#include "Residuals.h"
#include "batch/Cell.h"
#include "batch/StacItem.h"

#include <Tellurion/Numbers.h>

#include <iterator>
#include <sstream>

using Tellurion::PrintShortest;

namespace {

std::string Line(const Json& json) {
    return ToText(json, CommonOptions());
}

std::string CsvLine(const ReadResult& result, const std::optional<Footprint>& footprint) {
    const auto system = result.reference.CoordSys;
    const auto rmse = ComputeResiduals(result.reference).root_mean_square;
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
    return Line(RenderJson(result));
}

}  // namespace

std::string HeadingOf(RowFormat format) {
    if (format != RowFormat::Csv) return {};
    return "description,ok,referenceType,epsg,columns,rows,west,south,east,north,rmsePixels,error,detail\n";
}

Row MakeRow(ReadResult& result, const RowSettings& settings) {
    Row row;
    if (result.failure && result.failure->type == "std::bad_alloc") result.failure->type = "OutOfMemory";
    row.status = result.Status();
    const bool has_place = settings.format != RowFormat::JsonLines || settings.with_feature;
    ReadResult placed = has_place ? result : ReadResult();
    const auto footprint = has_place ? FootprintOf(placed) : std::nullopt;
    row.text = TextOf(settings.format == RowFormat::JsonLines ? result : placed, footprint, settings.format);
    if (settings.with_feature) row.feature = Line(FeatureJson(placed, footprint));
    return row;
}

Row MakeLostRow(const std::string& name, const std::string& type, const std::string& detail,
                const RowSettings& settings) {
    ReadResult result;
    result.file = name;
    result.failure = Failure{type, "", "mapanchor", detail};
    return MakeRow(result, settings);
}

std::string Pack(const Row& row) {
    std::ostringstream out;
    out << static_cast<int>(row.status) << ' ' << row.text.size() << '\n' << row.text << row.feature;
    return out.str();
}

Row Unpack(const std::string& bytes) {
    std::istringstream in(bytes);
    int status = 0;
    std::size_t length = 0;
    in >> status >> length;
    in.get();
    Row row;
    row.status = static_cast<ExitStatus>(status);
    const std::string rest(std::istreambuf_iterator<char>(in), {});
    row.text = rest.substr(0, length);
    row.feature = rest.substr(row.text.size());
    return row;
}
