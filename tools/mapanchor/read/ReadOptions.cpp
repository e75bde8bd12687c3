#include "read/ReadOptions.h"

#include "read/Systems.h"

#include "terminal/CommonOptions.h"

#include <MapAnchor/BGdalAccess.h>
#include <MapAnchor/BMapAnchor.h>
#include <MapAnchor/BReadingOptions.h>
#include <MapAnchor/BReferenceFormats.h>
#include <Tellurion/BException.h>

#include <CLI/CLI.hpp>
#include <charconv>
#include <map>
#include <vector>

namespace Tool {

namespace {

using MapAnchor::BMapAnchor;
using MapAnchor::BReferenceFormat;
using MapAnchor::BReferenceFormats;
using Tellurion::EMathTransformType;
using Tellurion::EReferenceType;

const std::map<std::string, EMathTransformType> kFits = {
    {"affine", EMathTransformType::Affine},         {"conformal", EMathTransformType::Conformal},
    {"poly2", EMathTransformType::Polynomial2},     {"poly3", EMathTransformType::Polynomial3},
    {"projective", EMathTransformType::Projective}, {"tps", EMathTransformType::ThinPlateSpline},
    {"bilinear", EMathTransformType::Bilinear},     {"none", EMathTransformType::None}};

const std::map<std::string, unsigned int> kStrictParts = {{"transform", BMapAnchor::kStrictTransform},
                                                          {"crs", BMapAnchor::kStrictCoordSys}};

// The numbers under which the library knows the boxes of a PDF page.
const std::map<std::string, int> kPdfBoxes = {
    {"art", 0}, {"trim", 2}, {"bleed", 3}, {"crop", 4}, {"media", 5}};

bool ParseWhole(const std::string& text, long& value) {
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    return result.ec == std::errc() && result.ptr == text.data() + text.size() && value > 0 &&
           value <= 0x7FFFFFFF;
}

/// How options name a kind.
std::string WordOf(const BReferenceFormat& format) {
    return CLI::detail::to_lower(format.GetName().StdStr());
}

void AllowDrivers(const std::string& names) {
    try {
        MapAnchor::BGdalAccess::SetDrivers(Tellurion::BString(names));
    } catch (const Tellurion::BException& error) {
        throw CLI::ValidationError("--gdal-drivers", error.what());
    }
}

void ParseSize(const std::string& text, ReadOptions& options) {
    const std::size_t cross = text.find_first_of("xX");
    long width = 0;
    long height = 0;
    if (cross == std::string::npos || !ParseWhole(text.substr(0, cross), width) ||
        !ParseWhole(text.substr(cross + 1), height))
        throw CLI::ValidationError("--size", "expected WxH in pixels, such as 2000x1000");
    options.width = width;
    options.height = height;
}

}  // namespace

void ReadOptions::AddSizeTo(CLI::App& app, const std::string& description) {
    app.add_option_function<std::string>(
           "--size", [this](const std::string& text) { ParseSize(text, *this); }, description)
        ->type_name("WxH");
}

EMathTransformType FitFromWord(const std::string& word) {
    return kFits.at(word);
}

std::unique_ptr<Tellurion::BCoordSys> SystemOption(const std::string& option, const std::string& text) {
    if (text.empty()) return nullptr;
    std::string failure;
    auto system = KnownSystem(text, failure);
    if (!system) throw CLI::ValidationError(option, failure);
    return system;
}

std::string KindWords(bool saved) {
    std::string words;
    for (const BReferenceFormat& format : BReferenceFormats::List())
        if (format.HasType() && (!saved || format.SavesByType()))
            words += (words.empty() ? "" : ", ") + WordOf(format);
    return words;
}

EReferenceType KindFromWord(const std::string& option, const std::string& word) {
    for (const BReferenceFormat& format : BReferenceFormats::List())
        if (format.HasType() && WordOf(format) == CLI::detail::to_lower(word)) return format.GetType();
    throw CLI::ValidationError(option, word + " is not one of " + KindWords());
}

/// Options that say nothing where a PDF is read by the rules alone.
void ReadOptions::AskBeyondRules(const char* option) {
    const bool asked = pdf_page != 1 || pdf_shown || params.HasProperty(BMapAnchor::kValPDFMap) ||
                       params.HasProperty(BMapAnchor::kValPDFPassword);
    if (pdf_by_rules && asked) throw CLI::ValidationError(option, "--strict pdf reads only the first page");
}

void ReadOptions::AddPdfTo(CLI::App& app) {
    app.add_option_function<std::string>(
           "--pdf-box",
           [this](const std::string& box) {
               pdf_box = kPdfBoxes.at(box);
               params.SetInteger(BMapAnchor::kValPDFCropType, *pdf_box);
           },
           "Box of the PDF page that the raster covers: art, trim, bleed, crop, media")
        ->check(CLI::IsMember({"art", "trim", "bleed", "crop", "media"}))
        ->type_name("BOX");
    app.add_option_function<int>(
           "--page",
           [this](int number) {
               pdf_page = number;
               params.SetInteger(BMapAnchor::kValPDFPage, number);
               AskBeyondRules("--page");
           },
           "Page of a PDF, counted from 1")
        ->check(CLI::Range(1, 0x7FFFFFFF))
        ->type_name("N");
    app.add_option_function<std::string>(
           "--map",
           [this](const std::string& map) {
               params.SetString(BMapAnchor::kValPDFMap, Tellurion::BString(map));
               AskBeyondRules("--map");
           },
           "Map of a PDF page: its name, its number from 1, largest or last")
        ->type_name("MAP");
    app.add_flag_callback(
        "--shown",
        [this] {
            pdf_shown = true;
            params.SetInteger(BMapAnchor::kValPDFShown, 1);
            AskBeyondRules("--shown");
        },
        "Use the PDF page as viewers show it, rotated and cropped");
    app.add_option_function<std::string>(
           "--password",
           [this](const std::string& password) {
               params.SetString(BMapAnchor::kValPDFPassword, Tellurion::BString(password));
               AskBeyondRules("--password");
           },
           "Password of a PDF that is encrypted with AES-256")
        ->type_name("TEXT");
}

void ReadOptions::AddSystemsTo(CLI::App& app) {
    const auto take = [this](const char* option, const std::string& text, bool overrides) {
        crs = Tellurion::BSharedPtr<Tellurion::BCoordSys>(SystemOption(option, text).release());
        overrides_crs = overrides;
    };
    CLI::Option* const assigned =
        app.add_option_function<std::string>(
               "--crs", [take](const std::string& text) { take("--crs", text, false); },
               "Assign this coordinate system, in any notation, to files without one")
            ->check(RefuseEmpty)
            ->type_name("TEXT");
    app.add_option_function<std::string>(
           "--override-crs", [take](const std::string& text) { take("--override-crs", text, true); },
           "Assign this coordinate system to all files, with or without one of their own")
        ->check(RefuseEmpty)
        ->type_name("TEXT")
        ->excludes(assigned);
}

void ReadOptions::AddTo(CLI::App& app) {
    app.option_defaults()->group("Reading options");
    app.add_option("--source", source,
                   "Read a raster from this source, a kind or a file name; mapanchor sources lists them")
        ->check(RefuseEmpty)
        ->type_name("NAME");
    AddSystemsTo(app);
    app.add_option_function<std::string>(
           "--type", [this](const std::string& word) { type = KindFromWord("--type", word); },
           "Read as this kind, whatever the file's name: " + KindWords())
        ->type_name("KIND");
    app.add_option_function<std::vector<std::string>>(
           "--strict",
           [this](const std::vector<std::string>& parts) {
               for (const std::string& part : parts) {
                   if (part != "pdf") flags |= kStrictParts.at(part);
                   if (part == "pdf") pdf_by_rules = true;
               }
               params.SetInteger(BMapAnchor::kValPDFWide, pdf_by_rules ? 0 : 1);
               AskBeyondRules("--strict");
           },
           "With --type: fail without a transform or a coordinate system (crs). pdf: read PDFs by the "
           "strict rules only")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->check(CLI::IsMember({"transform", "crs", "pdf"}))
        ->type_name("PART,...");
    AddSizeTo(app, "The raster's size in pixels. Default for a PDF: the size of its box at --dpi");
    app.add_option(
           "--fit", fit,
           "Transform to fit to the control points: affine, conformal, poly2, poly3, projective, tps, "
           "bilinear, none")
        ->transform(CLI::CheckedTransformer(kFits, CLI::ignore_case))
        ->type_name("FIT");
    AddPdfTo(app);
    AddNumber(
        app, "--dpi",
        [this](double value) {
            dpi = value;
            params.SetDouble(BMapAnchor::kValPDFResolution, value);
        },
        {MapAnchor::BReadingOptions::kLeastResolution, MapAnchor::BReadingOptions::kMostResolution},
        "Resolution of a PDF page in dots per inch (default 72)")
        ->type_name("N");
    app.add_option_function<std::string>(
           "--gdal-drivers", AllowDrivers,
           "Allow more GDAL drivers, such as VRT, which may open other files that a file names")
        ->type_name("DRIVER,...");
    app.option_defaults()->group("Options");
}

}  // namespace Tool
