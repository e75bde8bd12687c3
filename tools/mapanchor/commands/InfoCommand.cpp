#include "commands/Commands.h"
#include "commands/Tally.h"
#include "read/InputNames.h"
#include "read/ReadFile.h"
#include "read/ReadOptions.h"
#include "render/JsonRenderer.h"
#include "render/OneValue.h"
#include "render/TextRenderer.h"
#include "terminal/CommonOptions.h"

#include <memory>

namespace Tool {

namespace {

constexpr const char* kInfoDescription =
    "Show the georeferencing of each file\n\n"
    "Examples:\n"
    "  mapanchor info map.tfw\n"
    "  mapanchor info --size 2000x1000 --fit affine map.tab\n"
    "  mapanchor info --pdf-box crop --dpi 150 map.pdf\n"
    "  mapanchor info --print epsg,bounds photo.jpg\n"
    "  mapanchor info --explain photo.jpg\n"
    "  find . -name '*.tfw' -print0 | mapanchor info -0 --json -";

struct InfoOptions {
    CommonOptions common;
    ReadOptions read;
    std::vector<std::string> files;
    bool nul_separated = false;
    std::vector<std::string> values;  ///< that alone are printed; empty for everything
};

ExitStatus PrintValues(const ReadResult& result, const InfoOptions& options, const Console& console) {
    bool complete = true;
    console.Print(ValuesLine(result, options.values, complete));
    return result.Ok() && !complete ? ExitStatus::NoReference : result.Status();
}

ExitStatus Run(const InfoOptions& options) {
    const Console console = options.common.MakeConsole();
    LogCollector log;
    Tally tally;
    ForEachInput(options.files, options.nul_separated, [&](const std::string& file) {
        ReadResult result = ReadFile(file, options.read, log);
        tally.Count(options.values.empty() ? result.Status() : PrintValues(result, options, console));
        if (options.common.json && options.values.empty())
            return WriteJson(result, options.common,
                             [&console](std::string_view piece) { console.Print(piece); });
        if (result.Ok() && options.values.empty()) PrintReference(result, options.common, console);
        if (!options.values.empty())  // a script wants nothing but doubts
            std::erase_if(result.diagnostics, [](const Diagnostic& remark) { return remark.is_note; });
        TalkAbout(file, result.diagnostics, result.failure ? &*result.failure : nullptr, console);
    });
    return tally.Status();
}

}  // namespace

void AddInfoCommand(CLI::App& app, ExitStatus& status) {
    auto options = std::make_shared<InfoOptions>();
    CLI::App* info = app.add_subcommand("info", kInfoDescription);
    AddInputNames(*info, "FILE", "Files to read", options->files, options->nul_separated);
    info->add_option("--print", options->values,
                     "Print only these values, one line per file: crs, epsg, bounds, size, affine, wkt")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->check(CLI::IsMember(PrintableValues()))
        ->type_name("VALUE,...");
    info->add_flag("--explain", options->read.explains,
                   "Show where each value is written: the file and the line, byte, tag or object in it");
    options->read.pdf_list_pages = true;
    options->read.AddTo(*info);
    options->common.AddTo(*info);
    info->callback([options, &status] { status = Run(*options); });
}

}  // namespace Tool
