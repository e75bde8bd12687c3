#include "read/ReadOptions.h"

#include "read/Systems.h"

#include "terminal/CommonOptions.h"

#include <MapAnchor/BGdalAccess.h>
#include <MapAnchor/BMapAnchor.h>
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

}  // namespace

void ParseSize(const std::string& text, ReadOptions& options) {
    const std::size_t cross = text.find_first_of("xX");
    long width = 0;
    long height = 0;
    if (cross == std::string::npos || !ParseWhole(text.substr(0, cross), width) ||
        !ParseWhole(text.substr(cross + 1), height))
        throw CLI::ValidationError("--size", "wants WxH in pixels, such as 2000x1000");
    options.width = width;
    options.height = height;
}

std::string KindWords() {
    std::string words;
    for (const BReferenceFormat& format : BReferenceFormats::List())
        if (format.HasType()) words += (words.empty() ? "" : ", ") + WordOf(format);
    return words;
}

EReferenceType KindFromWord(const std::string& option, const std::string& word) {
    for (const BReferenceFormat& format : BReferenceFormats::List())
        if (format.HasType() && WordOf(format) == CLI::detail::to_lower(word)) return format.GetType();
    throw CLI::ValidationError(option, word + " is none of " + KindWords());
}

ReadOptions::ReadOptions() {
    params.SetInteger(BMapAnchor::kValErsCodes, 1);
    params.SetInteger(BMapAnchor::kValPDFWide, 1);
}

/// Options that say nothing where a PDF is read by the rules alone.
void ReadOptions::AskBeyondRules(const char* option) {
    const bool asked = pdf_page != 1 || pdf_shown || params.HasProperty(BMapAnchor::kValPDFMap) ||
                       params.HasProperty(BMapAnchor::kValPDFPassword);
    if (pdf_by_rules && asked)
        throw CLI::ValidationError(option, "--strict pdf reads the first page alone, as the rules have it");
}

void ReadOptions::AddPdfTo(CLI::App& app) {
    app.add_option_function<std::string>(
           "--pdf-box",
           [this](const std::string& box) {
               pdf_box = kPdfBoxes.at(box);
               params.SetInteger(BMapAnchor::kValPDFCropType, *pdf_box);
           },
           "The box of a PDF page that the raster shows: art, trim, bleed, crop, media")
        ->check(CLI::IsMember({"art", "trim", "bleed", "crop", "media"}))
        ->type_name("BOX");
    app.add_option_function<int>(
           "--page",
           [this](int number) {
               pdf_page = number;
               params.SetInteger(BMapAnchor::kValPDFPage, number);
               AskBeyondRules("--page");
           },
           "The page of a PDF, counted from 1")
        ->check(CLI::Range(1, 0x7FFFFFFF))
        ->type_name("N");
    app.add_option_function<std::string>(
           "--map",
           [this](const std::string& map) {
               params.SetString(BMapAnchor::kValPDFMap, Tellurion::BString(map));
               AskBeyondRules("--map");
           },
           "The map of a PDF page: its name, its number from 1, or largest")
        ->type_name("MAP");
    app.add_flag_callback(
        "--shown",
        [this] {
            pdf_shown = true;
            params.SetInteger(BMapAnchor::kValPDFShown, 1);
            AskBeyondRules("--shown");
        },
        "The raster shows a PDF page as viewers draw it, turned and cropped");
    app.add_option_function<std::string>(
           "--password",
           [this](const std::string& password) {
               params.SetString(BMapAnchor::kValPDFPassword, Tellurion::BString(password));
               AskBeyondRules("--password");
           },
           "Opens a PDF that is encrypted with AES-256")
        ->type_name("TEXT");
}

MapAnchor::BReadingOptions ReadOptions::ForReading() const {
    MapAnchor::BReadingOptions reading;
    if (type) reading.SetType(*type);
    reading.SetFlags(flags);
    reading.SetSize(width.value_or(0), height.value_or(0));
    reading.SetFindsSize(true);
    reading.SetMathType(fit);
    if (pdf_box) reading.SetPdfBox(*pdf_box);
    reading.SetPdfStrict(pdf_by_rules);
    if (pdf_page != 1) reading.SetPdfPage(pdf_page);
    reading.SetPdfShown(pdf_shown);
    reading.SetListsPdfPages(pdf_list_pages);
    reading.SetExplains(explains);
    for (const Tellurion::BString& key : {BMapAnchor::kValPDFMap, BMapAnchor::kValPDFPassword})
        if (params.HasProperty(key)) reading.SetParam(key, params.GetString(key, ""));
    reading.SetResolution(dpi);
    reading.SetSource(Tellurion::BString(source));
    reading.SetCoordSys(crs, overrides_crs);
    return reading;
}

void ReadOptions::AddSystemsTo(CLI::App& app) {
    const auto take = [this](const char* option, const std::string& text, bool overrides) {
        SystemAnswer answer;
        try {
            answer = SystemFromText(text);
        } catch (const Tellurion::BException&) {
        }
        if (!answer.system) throw CLI::ValidationError(option, "unknown coordinate system: " + text);
        crs = Tellurion::BSharedPtr<Tellurion::BCoordSys>(answer.system.release());
        overrides_crs = overrides;
    };
    CLI::Option* const assigned =
        app.add_option_function<std::string>(
               "--crs", [take](const std::string& text) { take("--crs", text, false); },
               "Coordinate system of files that state none, in any notation")
            ->type_name("TEXT");
    app.add_option_function<std::string>(
           "--override-crs", [take](const std::string& text) { take("--override-crs", text, true); },
           "Coordinate system of all files, whatever they state")
        ->type_name("TEXT")
        ->excludes(assigned);
}

void ReadOptions::AddTo(CLI::App& app) {
    app.add_option("--source", source,
                   "Read a raster from this source, by kind or file name; mapanchor sources lists them")
        ->check(RefuseEmpty)
        ->type_name("NAME");
    AddSystemsTo(app);
    app.add_option_function<std::string>(
           "--type", [this](const std::string& word) { type = KindFromWord("--type", word); },
           "Read as this kind, whatever the name: " + KindWords())
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
           "Fail when that part cannot be had (with --type): transform, crs; pdf: read a PDF by the "
           "rules alone")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->check(CLI::IsMember({"transform", "crs", "pdf"}))
        ->type_name("PART,...");
    app.add_option_function<std::string>(
           "--size", [this](const std::string& text) { ParseSize(text, *this); },
           "The raster's size in pixels; of a PDF without it: its box at the resolution")
        ->type_name("WxH");
    app.add_option(
           "--fit", fit,
           "Fit through control points: affine, conformal, poly2, poly3, projective, tps, bilinear, none")
        ->transform(CLI::CheckedTransformer(kFits, CLI::ignore_case))
        ->type_name("FIT");
    AddPdfTo(app);
    AddNumber(
        app, "--dpi",
        [this](double value) {
            dpi = value;
            params.SetDouble(BMapAnchor::kValPDFResolution, value);
        },
        {1.0, 1e5}, "Resolution of a PDF page in dots per inch; 72 without it")
        ->type_name("N");
    app.add_option_function<std::string>(
           "--gdal-drivers", AllowDrivers,
           "Also let these GDAL drivers read, such as VRT; they open what a file names")
        ->type_name("DRIVER,...");
}

}  // namespace Tool
