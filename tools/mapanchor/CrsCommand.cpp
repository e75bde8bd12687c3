#include "Commands.h"
#include "CommonOptions.h"
#include "JsonRenderer.h"
#include "ReferenceFacts.h"
#include "Systems.h"

#include <Tellurion/BCoordSys.h>
#include <Tellurion/BCoordSysRepository.h>
#include <Tellurion/BException.h>
#include <Tellurion/BUnit.h>
#include <Tellurion/Numbers.h>
#include <Tellurion/Printable.h>

#include <memory>
#include <vector>

namespace {

using Tellurion::BCoordSys;
using Tellurion::BCoordSysRepository;
using Tellurion::BString;
using Tellurion::BUnit;

constexpr const char* kDescription =
    "Tell what a coordinate system is called in other words\n\n"
    "TEXT is an EPSG code, well-known text, a MapInfo CoordSys clause, or the names of a\n"
    "projection and a datum.\n\n"
    "Examples:\n"
    "  mapanchor crs EPSG:32612\n"
    "  mapanchor crs NUTM12 NAD27\n"
    "  mapanchor crs LAT-LONG NAD83\n"
    "  mapanchor crs 'CoordSys Earth Projection 1, 104'\n"
    "  mapanchor crs \"$(cat map.prj)\"";

struct CrsOptions {
    CommonOptions common;
    std::vector<std::string> words;
};

/// The name of the EPSG system that the system was told to be or found to match.
std::string EpsgName(const BCoordSys& system) {
    const BString code = system.ToEPSGCode();
    if (code.IsEmpty()) return {};
    const std::unique_ptr<BCoordSys> known(BCoordSys::FromEPSGCode(code));
    return known ? known->GetName().StdStr() : std::string();
}

struct ErMapperNames {
    BString projection;
    BString datum;

    explicit ErMapperNames(const BCoordSys& system) {
        BCoordSysRepository::Instance()->WriteCoordSysToERMapperNames(system, projection, datum);
    }
    bool Known() const { return !projection.IsEmpty(); }
};

std::string UnitText(const BCoordSys& system) {
    const Tellurion::BSharedPtr<BUnit> unit = system.GetUnits();
    if (!unit) return "none";
    if (!unit->IsLinear()) return unit->GetName().StdStr();
    return unit->GetName().StdStr() + ", " + Tellurion::PrintShortest(unit->GetUnitsPerBase()) +
           " to a metre";
}

std::string Line(const Console& console, const std::string& label, const std::string& text) {
    if (text.empty()) return {};
    return "  " + console.Dim(label + std::string(label.size() < 10 ? 10 - label.size() : 1, ' ')) +
           Tellurion::Printable(text) + "\n";
}

std::string RenderText(const SystemAnswer& answer, const Console& console) {
    const BCoordSys& system = *answer.system;
    const std::string code = system.ToEPSGCode().StdStr();
    const ErMapperNames names(system);
    return console.Bold(TitleOf(system)) + "\n" + Line(console, "read as", answer.understood_as) +
           Line(console, "kind", WordForKind(system)) + Line(console, "units", UnitText(system)) +
           Line(console, "EPSG", code.empty() ? "none" : code + ", " + EpsgName(system)) +
           Line(console, "WKT", system.ToWKT().StdStr()) + Line(console, "PRJ", system.ToPRJ().StdStr()) +
           Line(console, "MIF", BCoordSysRepository::Instance()->WriteCoordSysToMIFString(system).StdStr()) +
           Line(console, "ER Mapper",
                names.Known() ? names.projection.StdStr() + " " + names.datum.StdStr() : "");
}

void Put(Json& object, const char* key, const std::string& text) {
    if (!text.empty()) object[key] = text;
}

Json Texts(const BCoordSys& system) {
    Json texts = Json::object();
    Put(texts, "prj", system.ToPRJ().StdStr());
    Put(texts, "mif", BCoordSysRepository::Instance()->WriteCoordSysToMIFString(system).StdStr());
    if (const ErMapperNames names(system); names.Known())
        texts["erMapper"] = {{"projection", names.projection.StdStr()}, {"datum", names.datum.StdStr()}};
    return texts;
}

Json RenderJson(const std::string& text, const SystemAnswer& answer) {
    Json json = JsonAbout(text);
    const std::string wkt = answer.system->ToWKT().StdStr();
    if (!wkt.empty()) json["coordinateSystem"] = {{"wkt", wkt}};
    Json system = ::RenderJson(*answer.system);
    Put(system, "epsgName", EpsgName(*answer.system));
    json["mapanchor"] = {{"schemaVersion", kSchemaVersion},
                         {"ok", true},
                         {"understoodAs", answer.understood_as},
                         {"coordSys", std::move(system)},
                         {"texts", Texts(*answer.system)}};
    return json;
}

ExitStatus Refuse(const std::string& text, const std::string& reason, const CrsOptions& options,
                  const Console& console) {
    console.Complain("mapanchor: " + text + ": error: " + reason);
    if (options.common.json) {
        Json json = JsonAbout(text);
        json["mapanchor"] = {{"schemaVersion", kSchemaVersion},
                             {"ok", false},
                             {"error", {{"type", "BCoordSysException"}, {"message", reason}}}};
        console.Print(ToText(json, options.common));
    }
    return ExitStatus::Error;
}

ExitStatus Run(const CrsOptions& options) {
    const Console console = options.common.MakeConsole();
    std::string text;
    for (const std::string& word : options.words)
        text += (text.empty() ? "" : " ") + word;
    try {
        const SystemAnswer answer = SystemFromText(text);
        if (!answer.system) return Refuse(text, "nothing known by these words", options, console);
        console.Print(options.common.json ? ToText(RenderJson(text, answer), options.common)
                                          : RenderText(answer, console));
    } catch (const Tellurion::BException& error) {
        return Refuse(text, error.GetDetailedMessage().StdStr(), options, console);
    }
    return ExitStatus::Done;
}

}  // namespace

void AddCrsCommand(CLI::App& app, ExitStatus& status) {
    auto options = std::make_shared<CrsOptions>();
    CLI::App* crs = app.add_subcommand("crs", kDescription);
    crs->add_option("TEXT", options->words, "The coordinate system, in one word or several")->required();
    options->common.AddTo(*crs);
    crs->callback([options, &status] { status = Run(*options); });
}
