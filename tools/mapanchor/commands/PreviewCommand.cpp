#include "commands/Commands.h"
#include "read/ReadFile.h"
#include "read/ReadOptions.h"
#include "read/Systems.h"
#include "render/Footprint.h"
#include "render/JsonRenderer.h"
#include "render/TextRenderer.h"
#include "render/Views.h"
#include "terminal/CommonOptions.h"
#include "terminal/TargetFile.h"

#include <memory>
#include <stdexcept>

namespace Tool {

namespace {

constexpr const char* kPreviewDescription =
    "Draw where a file is on the Earth, as SVG\n\n"
    "Shows its area on a map of the Earth, the control points with enlarged arrows to where the\n"
    "transform puts them, and for a PDF the page with its boxes and maps.\n\n"
    "Examples:\n"
    "  mapanchor preview map.tif -o map.svg\n"
    "  mapanchor preview --pdf-box crop map.pdf > map.svg";

struct PreviewOptions {
    CommonOptions common;
    ReadOptions read;
    std::string file;
    std::string target;  ///< empty for stdout
    bool overwrite = false;
};

std::string SubtitleOf(const ReadResult& result) {
    std::string text = result.kind;
    if (result.reference.HasCoordSys()) text += ", " + NameOf(*result.reference.CoordSys);
    if (result.width)
        text += ", " + std::to_string(*result.width) + " by " + std::to_string(*result.height) + " pixels";
    return text;
}

std::string Draw(ReadResult& result) {
    const auto footprint = FootprintOf(result);
    const auto frame = FrameOf(result);
    constexpr double kMostHeight =
        2 * kMargin + 2 * kLine + kViewWidth / 2 + 2 * kLine + 2 * (kViewHeight + 2 * kLine);
    Svg svg(kViewWidth + 2 * kMargin, kMostHeight);
    double top = kMargin;
    svg.Text({kMargin, top}, result.file, "title");
    svg.Text({kMargin, top + kLine}, SubtitleOf(result), "label");
    top += 2 * kLine;
    top += DrawWorld(svg, top, footprint);
    if (result.page) top += DrawPage(svg, top, *result.page);
    if (frame && (!result.page || !result.reference.PointPairVector.empty()))
        top += DrawRaster(svg, top, result, *frame);
    svg.CutBelow(top);
    return svg.ToText();
}

Json OutcomeJson(const PreviewOptions& options, const ReadResult& result) {
    Json ours = {{"schemaVersion", kSchemaVersion}, {"ok", result.Ok()}};
    if (result.failure)
        ours["error"] = RenderJson(*result.failure);
    else
        ours["written"] = {options.target};
    ours["diagnostics"] = RenderJson(result.diagnostics);
    Json top = JsonAbout(options.file);
    top["mapanchor"] = std::move(ours);
    return top;
}

/// The drawing never takes the place of what it shows.
void WriteDrawing(const PreviewOptions& options, ReadResult& result) {
    const auto fail = [&result](const std::string& why) {
        result.failure = MakeFailure(FailureTypes::kFileAccess, why);
    };
    for (const std::string& source : {options.file, result.used_file})
        if (IsSameFile(options.target, source))
            return fail("File <" + options.target +
                        "> is the file that is drawn; name another one for the drawing.");
    try {
        WriteWholeFile(options.target, Draw(result), options.overwrite);
    } catch (const std::runtime_error& error) {
        fail(error.what());
    }
}

ExitStatus Run(const PreviewOptions& options) {
    const Console console = options.common.MakeConsole();
    LogCollector log;
    ReadResult result = ReadFile(options.file, options.read, log);
    if (result.Ok() && options.target.empty())
        console.Print(Draw(result));
    else if (result.Ok())
        WriteDrawing(options, result);
    if (options.common.json && !options.target.empty())
        console.Print(ToText(OutcomeJson(options, result), options.common));
    else
        TalkAbout(options.file, result.diagnostics, result.failure ? &*result.failure : nullptr, console);
    return result.Status();
}

}  // namespace

void AddPreviewCommand(CLI::App& app, ExitStatus& status) {
    auto options = std::make_shared<PreviewOptions>();
    CLI::App* preview = app.add_subcommand("preview", kPreviewDescription);
    preview->add_option("FILE", options->file, "File to draw")->required();
    preview->add_option("-o,--output", options->target, "SVG file to write (default: stdout)")
        ->check(RefuseEmpty)
        ->type_name("SVG");
    preview->add_flag("--overwrite", options->overwrite, "Replace an existing file");
    options->read.AddTo(*preview);
    options->common.AddTo(*preview);
    preview->callback([options, &status] { status = Run(*options); });
}

}  // namespace Tool
