#include "commands/Commands.h"
#include "render/JsonRenderer.h"
#include "terminal/CommonOptions.h"
#include "terminal/Wrap.h"

#include <MapAnchor/BReferenceFormats.h>

#include <algorithm>
#include <memory>

namespace Tool {

namespace {

using MapAnchor::BReferenceFormat;
using MapAnchor::BReferenceFormats;
using Tellurion::BString;

constexpr const char* kFormatsDescription =
    "List the formats that can be read and saved here\n\n"
    "Examples:\n"
    "  mapanchor formats\n"
    "  mapanchor formats --json";

std::string Joined(const std::vector<BString>& texts) {
    std::string joined;
    for (const BString& text : texts)
        joined += (joined.empty() ? "" : " ") + text.StdStr();
    return joined;
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

std::string Actions(bool reads, bool saves) {
    if (reads) return saves ? "read save" : "read";
    return saves ? "save" : "-";
}

/// The extensions: those that are read, and those that are saved where they differ.
std::string Extensions(const BReferenceFormat& format) {
    const std::vector<BString> read = format.GetReadExtensions();
    const std::vector<BString> saved = format.GetSaveExtensions();
    std::string text = Joined(read);
    if (format.IsProbed()) text += text.empty() ? "by content" : ", and by content";
    std::vector<BString> more;
    for (const BString& extension : saved)
        if (std::ranges::count(read, extension) == 0) more.push_back(extension);
    if (!more.empty()) text += "; saved also as " + Joined(more);
    std::vector<BString> fewer;
    for (const BString& extension : read)
        if (std::ranges::count(saved, extension) == 0) fewer.push_back(extension);
    if (!saved.empty() && !fewer.empty()) text += "; not saved as " + Joined(fewer);
    return text;
}

std::string Described(const BReferenceFormat& format) {
    std::string text = format.GetTitle().StdStr();
    if (!format.GetServedBy().IsEmpty()) text += ", by " + format.GetServedBy().StdStr();
    if (!format.GetMissing().IsEmpty()) text += " (missing: " + format.GetMissing().StdStr() + ")";
    return text;
}

constexpr std::size_t kNameColumn = 8;
constexpr std::size_t kTypeColumn = 19;
constexpr std::size_t kTextColumn = 30;

std::string Row(const std::string& kind, const std::string& by_name, const std::string& by_type,
                const std::string& text) {
    std::string left = kind;
    left.resize(kNameColumn, ' ');
    left += by_name;
    left.resize(kTypeColumn, ' ');
    return Entry(left + by_type, text, kTextColumn);
}

std::string Row(const BReferenceFormat& format) {
    const bool by_name = !format.GetReadExtensions().empty() || format.IsProbed();
    const std::string extensions = Extensions(format);
    return Row(format.GetName().StdStr(), Actions(by_name, !format.GetSaveExtensions().empty()),
               Actions(format.ReadsByType(), format.SavesByType()), Described(format)) +
           (extensions.empty() ? "" : Entry("", extensions, kTextColumn));
}

ExitStatus Run(const CommonOptions& common) {
    const Console console = common.MakeConsole();
    std::string table = Row("kind", "by name", "by type", "format, extensions");
    for (const BReferenceFormat& format : BReferenceFormats::List()) {
        if (common.json)
            console.Print(ToText(RenderJson(format), common));
        else
            table += Row(format);
    }
    if (!common.json) console.Print(table);
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
