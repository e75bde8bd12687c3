#include "commands/Commands.h"
#include "read/InputNames.h"
#include "render/JsonRenderer.h"
#include "terminal/CommonOptions.h"

#include <MapAnchor/BMapAnchor.h>
#include <Tellurion/Printable.h>

#include <memory>

namespace Tool {

namespace {

constexpr const char* kDescription =
    "Show the world file extension for a raster's name\n\n"
    "Examples:\n"
    "  mapanchor ext orthophoto.tif";

struct ExtOptions {
    CommonOptions common;
    std::vector<std::string> files;
    bool nul_separated = false;
};

ExitStatus Run(const ExtOptions& options) {
    const Console console = options.common.MakeConsole();
    ForEachInput(options.files, options.nul_separated, [&](const std::string& file) {
        const std::string extension =
            MapAnchor::BMapAnchor::GenerateWorldFileExt(Tellurion::BString(file)).StdStr();
        if (!options.common.json) return console.Print(Tellurion::Printable(extension) + "\n");
        Json json = JsonAbout(file);
        json["mapanchor"] = {
            {"schemaVersion", kSchemaVersion}, {"ok", true}, {"worldFileExtension", extension}};
        console.Print(ToText(json, options.common));
    });
    return ExitStatus::Done;
}

}  // namespace

void AddExtCommand(CLI::App& app, ExitStatus& status) {
    auto options = std::make_shared<ExtOptions>();
    CLI::App* ext = app.add_subcommand("ext", kDescription);
    AddInputNames(*ext, "FILE", "Names of rasters", options->files, options->nul_separated);
    options->common.AddTo(*ext);
    ext->callback([options, &status] { status = Run(*options); });
}

}  // namespace Tool
