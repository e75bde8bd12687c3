#include "commands/Commands.h"
#include "read/ReferenceFacts.h"
#include "read/Systems.h"
#include "render/JsonRenderer.h"
#include "terminal/CommonOptions.h"

#include <Tellurion/BCoordSys.h>
#include <Tellurion/BCoordSysRepository.h>
#include <Tellurion/BException.h>
#include <Tellurion/BUnit.h>
#include <Tellurion/Numbers.h>
#include <Tellurion/Printable.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <system_error>
#include <vector>

namespace Tool {

namespace {

using Tellurion::BCoordSys;
using Tellurion::BCoordSysRepository;
using Tellurion::BString;
using Tellurion::BUnit;

constexpr const char* kDescription =
    "Convert a coordinate system between notations\n\n"
    "TEXT is a code (EPSG:25832, ESRI:102100, EPSG:25832+7837), a URN, well-known text,\n"
    "PROJJSON, a PROJ string, a MapInfo CoordSys clause, ER Mapper names, the name of a\n"
    "system, or the path of a .prj file; - reads it from stdin.\n\n"
    "Examples:\n"
    "  mapanchor crs EPSG:32612\n"
    "  mapanchor crs map.prj\n"
    "  mapanchor crs ETRS89 / UTM zone 32N\n"
    "  mapanchor crs NUTM12 NAD27\n"
    "  mapanchor crs 'CoordSys Earth Projection 1, 104'\n"
    "  mapanchor crs --to esri EPSG:25832 > map.prj";

struct CrsOptions {
    CommonOptions common;
    std::vector<std::string> words;
    std::string to;
};

/// The EPSG system that a system states or matches.
struct EpsgMatch {
    std::string code;  ///< empty when there is none
    std::string name;
    double metres = 0.0;  ///< the largest distance between the two

    explicit EpsgMatch(const BCoordSys& system) : code(system.ToEPSGCode().StdStr()) {
        const std::unique_ptr<BCoordSys> known(BCoordSys::FromEPSGCode(BString(code)));
        if (!known) return;
        name = known->GetName().StdStr();
        metres = system.DistanceTo(*known);
    }
    bool IsApart() const {
        constexpr double kLeastShown = 5e-5;
        return std::isfinite(metres) && metres >= kLeastShown;
    }
    std::string Text() const {
        if (code.empty()) return "none";
        return code + ", " + name + (IsApart() ? ", " + Tellurion::PrintFixed(metres, 4) + " m apart" : "");
    }
};

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
    const ErMapperNames names(system);
    return console.Bold(TitleOf(system)) + "\n" + Line(console, "read as", answer.understood_as) +
           Line(console, "kind", WordForKind(system)) + Line(console, "units", UnitText(system)) +
           Line(console, "EPSG", EpsgMatch(system).Text()) +
           Line(console, "WKT", system.ToWholeWKT().StdStr()) +
           Line(console, "PRJ", system.ToPRJ().StdStr()) +
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
    const std::string wkt = answer.system->ToWholeWKT().StdStr();
    if (!wkt.empty()) json["coordinateSystem"] = {{"wkt", wkt}};
    Json system = Tool::RenderJson(*answer.system);
    const EpsgMatch match(*answer.system);
    Put(system, "epsgName", match.name);
    if (match.IsApart()) system["epsgDistance"] = match.metres;
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

BString ErMapperText(const BCoordSys& system) {
    const ErMapperNames names(system);
    return names.Known() ? names.projection + BString(" ") + names.datum : BString();
}

/// Empty where version 1 cannot describe the system.
BString Wkt1(const BCoordSys& system) {
    const std::string text = system.ToWholeWKT().StdStr();
    return text.substr(0, text.find('[')).ends_with("CS") && !text.starts_with("COORD") ? BString(text)
                                                                                        : BString();
}

struct Notation {
    const char* word;
    const char* name;
    BString (*write)(const BCoordSys&);
};

constexpr Notation kNotations[] = {
    {"wkt1", "well-known text 1", Wkt1},
    {"wkt2", "well-known text 2", [](const BCoordSys& s) { return s.ToWKT2(); }},
    {"esri", "ESRI's well-known text", [](const BCoordSys& s) { return s.ToPRJ(); }},
    {"projjson", "PROJJSON", [](const BCoordSys& s) { return s.ToPROJJSON(); }},
    {"proj", "a PROJ string", [](const BCoordSys& s) { return s.ToPROJString(); }},
    {"mif", "a MapInfo clause",
     [](const BCoordSys& s) { return BCoordSysRepository::Instance()->WriteCoordSysToMIFString(s); }},
    {"ersmapper", "ER Mapper names", ErMapperText},
    {"epsg", "an EPSG code", [](const BCoordSys& s) { return s.ToEPSGCode(); }},
};

/// One notation alone, and a warning when it does not keep all of the system.
ExitStatus PrintOne(const std::string& text, const BCoordSys& system, const CrsOptions& options,
                    const Console& console) {
    const Notation& notation = *std::ranges::find(kNotations, options.to, &Notation::word);
    const BString written = notation.write(system);
    if (written.IsEmpty())
        return Refuse(text, std::string(notation.name) + " cannot describe this system", options, console);
    console.Print(written.StdStr() + "\n");
    const std::unique_ptr<BCoordSys> back(BCoordSys::FromText(written));
    if (back && back->IsSame(system)) return ExitStatus::Done;
    console.Complain("mapanchor: " + text + ": warning: " + notation.name + " does not keep all of " +
                     NameOf(system) + (back ? ": it reads back as " + NameOf(*back) : std::string()));
    return ExitStatus::Warnings;
}

std::string ReasonForNone(const std::string& text, const SystemAnswer& answer) {
    if (answer.understood_as != "PRJ file") return "unknown coordinate system";
    if (const std::ifstream in(text); !in) return std::generic_category().message(errno);
    return "the file holds no coordinate system that is understood";
}

ExitStatus Run(const CrsOptions& options) {
    const Console console = options.common.MakeConsole();
    std::string text;
    for (const std::string& word : options.words)
        text += (text.empty() ? "" : " ") + word;
    if (text == "-") text.assign(std::istreambuf_iterator<char>(std::cin), {});
    try {
        const SystemAnswer answer = SystemFromText(text);
        if (!answer.system) return Refuse(text, ReasonForNone(text, answer), options, console);
        if (!options.to.empty()) return PrintOne(text, *answer.system, options, console);
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
    crs->add_option("TEXT", options->words, "The coordinate system, in one word or several; - reads stdin")
        ->required();
    std::vector<std::string> words;
    for (const Notation& notation : kNotations)
        words.emplace_back(notation.word);
    crs->add_option("--to", options->to, "Print this notation alone")
        ->type_name("NOTATION")
        ->check(CLI::IsMember(words));
    options->common.AddTo(*crs);
    crs->callback([options, &status] { status = Run(*options); });
}

}  // namespace Tool
