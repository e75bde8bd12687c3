// The command line: any bytes under any extension that is read, with other files beside
// them, through info, footprint, preview and, where there is a reference, convert to every
// kind. No exception gets out of a command.
//
// An input is the number of the extension, of the fit, of the type, some flags with the
// number of the command, the number of files beside, for each of these its extension and two bytes of length,
// then the contents: the files beside first, the main file at the end.

#include "ReferenceFuzz.h"
#include "commands/Commands.h"

#include <MapAnchor/BReferenceFormats.h>

#include <cpl_error.h>
#include <gdal.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

namespace fs = std::filesystem;
using namespace Tool;

// The order is part of the seeds: new ones go to the end.
constexpr const char* kExtensions[] = {"tif", "tfw", "rsf", "tab",  "ers",  "pdf", "kap", "jp2", "ecw", "sid",
                                       "doq", "gen", "ovr", "on1",  "ddf",  "dem", "asc", "adf", "dt0", "dt1",
                                       "dt2", "dt3", "dt4", "tiff", "tifw", "jgw", "pgw", "bpw", "eww", "sdw",
                                       "wld", "blw", "gfw", "jpgw", "toc",  "j2w", "dt5", "kpw"};
constexpr const char* kBeside[] = {"prj", "tfw",     "tif.aux.xml", "jp2.aux.xml", "tif.ovr", "tif.msk",
                                   "tab", "wld",     "asc.prj",     "rsf",         "ers",     "hdr",
                                   "aux", "tif.xml", "img",         "ovr"};
constexpr const char* kFits[] = {"affine",     "conformal", "poly2",    "poly3",
                                 "projective", "tps",       "bilinear", "none"};
constexpr const char* kTypes[] = {"wld", "rsf", "tab", "ers", "tif", "sid", "ecw", "doq", "kap", "pdf"};

enum Flag : unsigned { kSize = 1, kJson = 2, kStrict = 4, kVerbose = 8, kInPlace = 16 };
/// The bits above the flags hold the number of the command that follows info.
constexpr unsigned kCommandShift = 5;
constexpr std::pair<unsigned, const char*> kTargets[] = {{3, "tfw"}, {4, "rsf"}, {5, "tab"},
                                                         {5, "ers"}, {6, "tif"}, {7, "pdf"}};

/// A folder that every input finds empty but for a raster and a page to save into.
class Folder {
public:
    Folder() : path_("/dev/shm/mapanchor-fuzz-XXXXXX") {
        if (!mkdtemp(path_.data())) std::abort();
        setenv("TMPDIR", path_.c_str(), 1);
        setenv("PROJ_DEBUG", "0", 1);
        GDALAllRegister();
        const std::string made = path_ + "/made.tif";
        GDALClose(GDALCreate(GDALGetDriverByName("GTiff"), made.c_str(), 64, 48, 1, GDT_Byte, nullptr));
        std::ifstream in(made, std::ios::binary);
        raster_.assign(std::istreambuf_iterator<char>(in), {});
        for (const auto& format : MapAnchor::BReferenceFormats::List())
            for (const auto& extension : format.GetReadExtensions())
                if (std::ranges::count(kExtensions, extension.StdStr().substr(1)) == 0) std::abort();
    }
    ~Folder() { fs::remove_all(path_); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    std::string operator/(const std::string& name) const { return path_ + "/" + name; }
    void Write(const std::string& name, const std::string& content) const {
        std::ofstream(*this / name, std::ios::binary) << content;
    }
    void Clear() const {
        for (const auto& entry : fs::directory_iterator(path_))
            fs::remove_all(entry.path());
        Write("out.tif", raster_);
        Write("out.pdf", kPage);
        Write("good.tfw", "0.5\n0\n0\n-0.5\n676000\n5242000\n");
        Write("good.prj", prj_);
    }

private:
    static constexpr const char* kPage =
        "%PDF-1.4\n1 0 obj <</Type/Catalog/Pages 2 0 R>> endobj\n2 0 obj <</Type/Pages/Kids[3 0 R]/Count 1>> "
        "endobj\n3 0 obj <</Type/Page/Parent 2 0 R/MediaBox[0 0 64 48]>> endobj\nxref\n0 4\n0000000000 65535 "
        "f \n"
        "0000000009 00000 n \n0000000054 00000 n \n0000000105 00000 n \ntrailer <</Size 4/Root 1 0 R>>\n"
        "startxref\n168\n%%EOF\n";
    std::string path_;
    std::string raster_;
    std::string prj_ =
        Tellurion::BSharedPtr<Tellurion::BCoordSys>(Tellurion::BCoordSys::FromEPSGCode("32632"))
            ->ToWKT()
            .StdStr();
};

using Words = std::vector<std::string>;

ExitStatus Run(const char* command, void (*add)(CLI::App&, ExitStatus&), const Words& words,
               const Words& options) {
    CLI::App app;
    ExitStatus status = ExitStatus::Done;
    add(app, status);
    Words all = {command};
    all.insert(all.end(), options.begin(), options.end());
    all.insert(all.end(), words.begin(), words.end());
    std::ranges::reverse(all);  // the parser takes them from the back
    app.parse(all);
    return status;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Folder folder;
    fuzz::Choices choices(data, size);
    folder.Clear();
    const std::string file = folder / (std::string("map.") + choices.OneOf(kExtensions));
    const char* fit = choices.OneOf(kFits);
    const std::size_t type = choices.Below(24);  // mostly what the name says
    const unsigned flags = choices.Byte();
    const std::size_t beside = choices.Below(4);
    std::vector<std::pair<std::string, std::size_t>> files;
    for (std::size_t i = 0; i < beside; ++i) {
        const std::string name = std::string("map.") + choices.OneOf(kBeside);
        const std::size_t high = choices.Byte();
        files.emplace_back(name, high * 256 + choices.Byte());
    }
    files.emplace_back(fs::path(file).filename().string(), size);
    std::size_t at = std::min(size, 5 + 3 * beside);
    for (const auto& [name, length] : files) {
        const std::size_t end = std::min(size, at + length);
        folder.Write(name, std::string(data + at, data + end));
        at = end;
    }

    Words options = {"-q"};
    if (flags & kSize) options.insert(options.end(), {"--size", "64x48"});
    if (flags & kStrict) options.insert(options.end(), {"--strict", "transform,crs"});
    if (type < std::size(kTypes)) options.insert(options.end(), {"--type", kTypes[type]});
    options.insert(options.end(), {"--fit", fit});
    if (flags & kVerbose) options.emplace_back("-v");
    Words talk = options;
    if (flags & kJson) talk.emplace_back("--json");
    const ExitStatus status = Run("info", AddInfoCommand, {file}, talk);
    if (flags & kInPlace)
        Run("convert", AddConvertCommand, {"--overwrite", folder / "good.tfw", file}, {"-q"});
    if (status != ExitStatus::Done && status != ExitStatus::Warnings) return 0;
    // One command for an input, so that many inputs are tried; all of them for the number 0.
    const unsigned chosen = flags >> kCommandShift;
    if (chosen == 0 || chosen == 1) Run("footprint", AddFootprintCommand, {file}, talk);
    if (chosen == 0 || chosen == 2)
        Run("preview", AddPreviewCommand, {file, "--no-thumbnail", "-o", folder / "out.svg"}, options);
    for (const auto& [number, kind] : kTargets)
        if (chosen == 0 || chosen == number)
            Run("convert", AddConvertCommand,
                {"--overwrite", "--image", "map.tif", file, folder / (std::string("out.") + kind)}, talk);
    return 0;
}
