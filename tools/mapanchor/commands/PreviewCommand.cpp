#include "commands/Commands.h"
#include "picture/SvgPicture.h"
#include "picture/ThumbnailProcess.h"
#include "read/ReadFile.h"
#include "read/ReadOptions.h"
#include "read/RemarkIds.h"
#include "read/Systems.h"
#include "render/Footprint.h"
#include "render/JsonRenderer.h"
#include "render/RasterFacts.h"
#include "render/TextRenderer.h"
#include "render/Views.h"
#include "terminal/CommonOptions.h"
#include "terminal/TargetFile.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <memory>
#include <stdexcept>

namespace Tool {

namespace {

constexpr const char* kPreviewDescription =
    "Draw where a file is on the Earth, as SVG or PNG\n\n"
    "Shows its area on a map of the Earth and with its surroundings, the raster itself in small\n"
    "with its control points and enlarged arrows to where the transform puts them, and for a PDF\n"
    "the page with its boxes and maps.\n\n"
    "Examples:\n"
    "  mapanchor preview map.tif -o map.svg\n"
    "  mapanchor preview map.tif -o map.png\n"
    "  mapanchor preview --pdf-box crop map.pdf > map.svg";

struct PreviewOptions {
    CommonOptions common;
    ReadOptions read;
    std::string file;
    std::string target;  ///< empty for stdout
    bool overwrite = false;
    bool no_thumbnail = false;
};

std::string SubtitleOf(const ReadResult& result) {
    std::string text = result.kind;
    if (result.reference.HasCoordSys()) text += ", " + NameOf(*result.reference.CoordSys);
    return text;
}

/// A raster without a thumbnail is drawn as its outline.
void AddThumbnail(PreviewSubject& subject, Diagnostics& diagnostics) {
    const std::string& raster = subject.result.raster;
    if (raster.empty() || !subject.frame || subject.result.page) return;
    const ThumbnailAnswer made =
        MakeThumbnail(raster, static_cast<int>(kViewWidth), static_cast<int>(kViewHeight));
    subject.thumbnail = made.png;
    if (made.failure.empty()) return;
    Diagnostic note{false, "there is no thumbnail of " + raster + ": " + made.failure,
                    RemarkId::kNoThumbnail};
    note.is_note = true;
    diagnostics.push_back(note);
}

std::string Draw(ReadResult& result, const PreviewOptions& options) {
    const auto frame = FrameOf(result);
    const auto footprint = FootprintOf(result);
    const auto unknown = [](const Diagnostic& remark) { return remark.id == RemarkId::kSizeUnknown; };
    // Both remark on a size that is not known.
    if (std::ranges::count_if(result.diagnostics, unknown) > 1)
        result.diagnostics.erase(std::ranges::find_if(result.diagnostics, unknown));
    PreviewSubject subject{result, frame, footprint, {}, ToLongitudeLatitude(result)};
    if (!options.no_thumbnail) AddThumbnail(subject, result.diagnostics);
    constexpr double kMostHeight = 4000.0;  // of all parts together
    Svg svg(kViewWidth + 2 * kMargin, kMostHeight);
    double top = kMargin;
    constexpr double kTitleWidth = kViewWidth * 0.75;  // its letters are larger
    svg.Text({kMargin, top}, FittedText(result.file, kTitleWidth), "title");
    svg.Text({kMargin, top + kLine}, FittedText(SubtitleOf(result), kViewWidth), "label");
    top += 2 * kLine;
    top += DrawWorld(svg, top, subject);
    top += DrawSurroundings(svg, top, subject);
    if (result.page) top += DrawPage(svg, top, *result.page);
    if (frame) top += DrawRaster(svg, top, subject);
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

/// The extension of the drawing, in lower case and with its dot.
std::string KindOf(const std::string& target) {
    std::string kind = std::filesystem::path(target).extension().string();
    std::ranges::transform(kind, kind.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return kind;
}

/// Nothing is drawn under a name that promises another kind of picture.
std::string RefuseKind(const std::string& target) {
    constexpr const char* kOthers[] = {".bmp", ".eps", ".gif",  ".jpeg", ".jpg",  ".jp2",
                                       ".pdf", ".ps",  ".svgz", ".tif",  ".tiff", ".webp"};
    if (target.empty()) return RefuseEmpty(target);
    if (std::ranges::find(kOthers, KindOf(target)) == std::end(kOthers)) return {};
    return "previews are drawn as .svg and .png, not as " + KindOf(target);
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
        std::string drawing = Draw(result, options);
        if (KindOf(options.target) == ".png") drawing = PngOfSvg(drawing);
        WriteWholeFile(options.target, drawing, options.overwrite);
    } catch (const std::runtime_error& error) {
        fail(error.what());
    }
}

ExitStatus Run(const PreviewOptions& options) {
    const Console console = options.common.MakeConsole();
    LogCollector log;
    ReadResult result = ReadFile(options.file, options.read, log);
    if (result.Ok() && options.target.empty())
        console.Print(Draw(result, options));
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
    preview->add_option("-o,--output", options->target, "SVG or PNG file to write (default: SVG to stdout)")
        ->check(RefuseKind)
        ->type_name("FILE");
    preview->add_flag("--no-thumbnail", options->no_thumbnail, "Do not read the raster's pixels");
    preview->add_flag("--overwrite", options->overwrite, "Replace an existing file");
    options->read.AddTo(*preview);
    options->common.AddTo(*preview);
    preview->callback([options, &status] { status = Run(*options); });
}

}  // namespace Tool
