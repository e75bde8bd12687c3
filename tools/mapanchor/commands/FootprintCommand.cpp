#include "commands/Commands.h"
#include "commands/Tally.h"
#include "read/InputNames.h"
#include "read/ReadFile.h"
#include "read/ReadOptions.h"
#include "render/Feature.h"
#include "render/TextRenderer.h"
#include "terminal/CommonOptions.h"

#include <memory>

namespace Tool {

namespace {

constexpr const char* kFootprintDescription =
    "Show the area that each file covers on the Earth, as GeoJSON\n\n"
    "Longitude and latitude on WGS 84, with as many points as the curves of the edge need, cut\n"
    "at the antimeridian. Prints one feature collection or, with --json, one feature per line.\n\n"
    "Examples:\n"
    "  mapanchor footprint map.tif > map.geojson\n"
    "  mapanchor footprint --size 2000x1000 map.tfw\n"
    "  mapanchor footprint --json *.tif";

struct FootprintOptions {
    CommonOptions common;
    ReadOptions read;
    std::vector<std::string> files;
    bool nul_separated = false;
};

/// The text around features that makes them one collection; none around lines.
class Collection {
public:
    Collection(const Console& console, const CommonOptions& common) : console_(console), common_(common) {}

    void Begin() const {
        if (!common_.json) console_.Print("{\"type\":\"FeatureCollection\",\"features\":[");
    }
    void Add(const Json& feature) {
        if (!common_.json) console_.Print(is_first_ ? "\n" : ",\n");
        is_first_ = false;
        std::string text = ToText(feature, common_);
        if (!common_.json) text.pop_back();
        console_.Print(text);
    }
    void End() const {
        if (!common_.json) console_.Print("\n]}\n");
    }

private:
    const Console& console_;
    const CommonOptions& common_;
    bool is_first_ = true;
};

ExitStatus StatusOf(const ReadResult& result, bool has_footprint) {
    return result.Ok() && !has_footprint ? ExitStatus::NoReference : result.Status();
}

ExitStatus Run(const FootprintOptions& options) {
    const Console console = options.common.MakeConsole();
    LogCollector log;
    Tally tally;
    Collection collection(console, options.common);
    collection.Begin();
    ForEachInput(options.files, options.nul_separated, [&](const std::string& file) {
        ReadResult result = ReadFile(file, options.read, log);
        const auto footprint = FootprintOf(result);
        tally.Count(StatusOf(result, footprint.has_value()));
        collection.Add(FeatureJson(result, footprint));
        if (!options.common.json)
            TalkAbout(file, result.diagnostics, result.failure ? &*result.failure : nullptr, console);
    });
    collection.End();
    return tally.Status();
}

}  // namespace

void AddFootprintCommand(CLI::App& app, ExitStatus& status) {
    auto options = std::make_shared<FootprintOptions>();
    CLI::App* footprint = app.add_subcommand("footprint", kFootprintDescription);
    AddInputNames(*footprint, "FILE", "Files to read", options->files, options->nul_separated);
    options->read.AddTo(*footprint);
    options->common.AddTo(*footprint);
    footprint->callback([options, &status] { status = Run(*options); });
}

}  // namespace Tool
