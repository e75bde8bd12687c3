#include "commands/Commands.h"
#include "render/JsonRenderer.h"
#include "render/TextRenderer.h"
#include "terminal/CommonOptions.h"

#include <MapAnchor/BReferenceFormats.h>

#include <memory>

namespace Tool {

namespace {

using MapAnchor::BReferenceFormat;
using MapAnchor::BReferenceFormats;
using Tellurion::BString;

constexpr const char* kFormatsDescription =
    "Tell what can be read and saved here, and by which reader\n\n"
    "Examples:\n"
    "  mapanchor formats\n"
    "  mapanchor formats --json";

std::string Joined(const std::vector<BString>& texts) {
    std::string joined;
    for (const BString& text : texts)
        joined += (joined.empty() ? "" : " ") + text.StdStr();
    return joined.empty() ? "-" : joined;
}

Json List(const std::vector<BString>& texts) {
    Json list = Json::array();
    for (const BString& text : texts)
        list.push_back(text.StdStr());
    return list;
}

Json RenderJson(const BReferenceFormat& format) {
    Json json = {{"name", format.GetName().StdStr()}, {"title", format.GetTitle().StdStr()}};
    if (format.HasType()) json["type"] = static_cast<int>(format.GetType());
    json["readsByType"] = format.ReadsByType();
    json["savesByType"] = format.SavesByType();
    json["readExtensions"] = List(format.GetReadExtensions());
    json["saveExtensions"] = List(format.GetSaveExtensions());
    json["probed"] = format.IsProbed();
    json["sidecar"] = format.IsSidecar();
    if (format.SavesByType())
        json["saves"] = {{"inPlace", format.SavesInPlace()},
                         {"points", format.HoldsPoints()},
                         {"rotation", format.HoldsRotation()},
                         {"coordinateSystem", format.HoldsCoordSys(true) || format.HoldsCoordSys(false)},
                         {"verticalUnit", format.HoldsVerticalUnit(true) || format.HoldsVerticalUnit(false)}};
    if (!format.GetServedBy().IsEmpty()) json["servedBy"] = format.GetServedBy().StdStr();
    if (!format.GetMissing().IsEmpty()) json["missing"] = format.GetMissing().StdStr();
    return json;
}

std::string TypeRoads(const BReferenceFormat& format) {
    if (!format.ReadsByType() && !format.SavesByType()) return "-";
    const std::string number = std::to_string(static_cast<int>(format.GetType()));
    return number + (format.ReadsByType() ? " read" : "") + (format.SavesByType() ? " save" : "");
}

std::string Described(const BReferenceFormat& format) {
    std::string text = format.GetTitle().StdStr();
    if (!format.GetServedBy().IsEmpty()) text += ", by " + format.GetServedBy().StdStr();
    if (!format.GetMissing().IsEmpty()) text += " (missing: " + format.GetMissing().StdStr() + ")";
    return text;
}

ExitStatus Run(const CommonOptions& common) {
    const Console console = common.MakeConsole();
    std::vector<std::vector<std::string>> rows = {{"name", "by type", "reads", "saves", "what it is"}};
    for (const BReferenceFormat& format : BReferenceFormats::List()) {
        if (common.json) {
            console.Print(ToText(RenderJson(format), common));
            continue;
        }
        rows.push_back({format.GetName().StdStr(), TypeRoads(format),
                        Joined(format.GetReadExtensions()) + (format.IsProbed() ? " and by content" : ""),
                        Joined(format.GetSaveExtensions()), Described(format)});
    }
    if (!common.json) console.Print(RenderTable(rows, console));
    return ExitStatus::Done;
}

}  // namespace

void AddFormatsCommand(CLI::App& app, ExitStatus& status) {
    auto common = std::make_shared<CommonOptions>();
    CLI::App* formats = app.add_subcommand("formats", kFormatsDescription);
    common->AddTo(*formats);
    formats->callback([common, &status] { status = Run(*common); });
}

}  // namespace Tool
