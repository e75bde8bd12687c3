#include "commands/Commands.h"
#include "commands/Tally.h"
#include "read/InputNames.h"
#include "read/ReadFile.h"
#include "read/ReadOptions.h"
#include "read/Systems.h"
#include "render/SourcesJson.h"
#include "render/TextRenderer.h"
#include "terminal/CommonOptions.h"

#include <MapAnchor/BReferenceSources.h>
#include <Tellurion/BFileUtilities.h>
#include <Tellurion/Numbers.h>

#include <cmath>
#include <memory>

namespace Tool {

namespace {

using MapAnchor::BReferenceSource;
using MapAnchor::BReferenceSources;
using Tellurion::BString;

constexpr const char* kSourcesDescription =
    "List all sources of a raster's georeferencing\n\n"
    "Sources are the raster's own tags or control points and the files beside it. The table\n"
    "shows which one is read here, which one GDAL reads, and the distance of each from the one\n"
    "that is read, at the worst corner. --source NAME makes every command read another one.\n\n"
    "Examples:\n"
    "  mapanchor sources photo.jpg\n"
    "  mapanchor sources --json *.tif\n"
    "  mapanchor info --source photo.tab photo.jpg";

struct SourcesOptions {
    CommonOptions common;
    ReadOptions read;
    std::vector<std::string> files;
    bool nul_separated = false;
};

std::string Distance(double value, int decimals) {
    return std::isfinite(value) ? Tellurion::PrintFixed(value, decimals) : "-";
}

std::vector<std::string> RowOf(const BReferenceSource& source) {
    std::string names;
    for (const BString& file : source.GetFiles())
        names += (names.empty() ? "" : ", ") + Tellurion::BFileUtilities::GetFileName(file).StdStr();
    const auto& reading = source.GetReading();
    std::string system = reading.GetFailureText().StdStr();
    if (reading.HasReference())
        system = reading.GetReference().HasCoordSys() ? NameOf(*reading.GetReference().CoordSys) : "-";
    return {source.GetKind().StdStr(),
            names,
            source.Wins() ? "yes" : "no",
            source.WinsInGdal() ? "yes" : "no",
            Distance(source.GetDistancePixels(), 2),
            Distance(source.GetDistanceMetres(), 3),
            system};
}

ExitStatus ListSources(const std::string& file, const SourcesOptions& options, const Console& console) {
    const auto sources = BReferenceSources::Of(BString(file), options.read.ForReading());
    const ReadResult result = ResultOf(sources.GetReading(), file);
    if (options.common.json) {
        console.Print(ToText(SourcesJson(sources, result), options.common));
        return result.Status();
    }
    std::vector<std::vector<std::string>> rows = {
        {"source", "files", "read here", "read by GDAL", "pixels", "metres", "system"}};
    for (const BReferenceSource& source : sources.GetSources())
        rows.push_back(RowOf(source));
    if (rows.size() > 1) console.Print(console.Bold(file) + "\n" + RenderTable(rows, console));
    TalkAbout(file, result.diagnostics, result.failure ? &*result.failure : nullptr, console);
    return result.Status();
}

ExitStatus Run(const SourcesOptions& options) {
    const Console console = options.common.MakeConsole();
    Tally tally;
    ForEachInput(options.files, options.nul_separated,
                 [&](const std::string& file) { tally.Count(ListSources(file, options, console)); });
    return tally.Status();
}

}  // namespace

void AddSourcesCommand(CLI::App& app, ExitStatus& status) {
    auto options = std::make_shared<SourcesOptions>();
    CLI::App* sources = app.add_subcommand("sources", kSourcesDescription);
    AddInputNames(*sources, "RASTER", "Rasters", options->files, options->nul_separated);
    options->read.AddTo(*sources);
    options->common.AddTo(*sources);
    sources->callback([options, &status] { status = Run(*options); });
}

}  // namespace Tool
