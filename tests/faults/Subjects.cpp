#include "Subjects.h"

#include "GdalFiles.h"
#include "PlainPdf.h"
#include "References.h"
#include "Roads.h"

#include <cpl_string.h>
#include <gdal_alg.h>

#include <algorithm>
#include <fstream>
#include <numeric>
#include <sstream>

using namespace Tellurion;

namespace {

constexpr const char* kTile = "TILED=YES BLOCKXSIZE=16 BLOCKYSIZE=16 ";

/// Creation options, then what is done to the raster.
struct TiffKind {
    const char* name;
    std::string options;
    std::string additions = "";
    int bands = 1;
    int width = 40;
    int height = 30;
    GDALDataType type = GDT_Byte;
};

const TiffKind kTiffs[] = {
    {"plain", ""},
    {"odd_strips", "BLOCKYSIZE=7"},
    {"one_pixel", "", "", 1, 1, 1},
    {"odd_length", "", "odd"},
    {"tiled", kTile},
    {"bigtiff", "BIGTIFF=YES"},
    {"big_endian", "ENDIANNESS=BIG"},
    {"bigtiff_big_endian", "BIGTIFF=YES ENDIANNESS=BIG"},
    {"bigtiff_tiled_all", std::string(kTile) + "BIGTIFF=YES ENDIANNESS=BIG COMPRESS=DEFLATE",
     "mask overviews"},
    {"deflate", "COMPRESS=DEFLATE PREDICTOR=2"},
    {"lzw", "COMPRESS=LZW"},
    {"packbits", "COMPRESS=PACKBITS"},
    {"jpeg", std::string(kTile) + "COMPRESS=JPEG PHOTOMETRIC=YCBCR", "", 3},
    {"fax", "COMPRESS=CCITTFAX4 NBITS=1"},
    {"four_bands", "INTERLEAVE=PIXEL ALPHA=YES", "", 4},
    {"separate_bands", "INTERLEAVE=BAND", "", 3},
    {"float", "", "", 1, 40, 30, GDT_Float32},
    {"complex_int16", "", "", 1, 40, 30, GDT_CInt16},
    {"sparse", "SPARSE_OK=TRUE", "empty"},
    {"sparse_bigtiff", "SPARSE_OK=TRUE BIGTIFF=YES", "empty"},
    {"mask", "", "mask"},
    {"mask_beside", "", "msk"},
    {"overviews", "", "overviews"},
    {"overviews_beside", "", "ovr"},
    {"mask_and_overviews", kTile, "mask overviews"},
    {"directories", "", "second"},
    {"directories_referenced", "", "transform second"},
    {"cog", "", "cog", 1, 600, 600},
    {"cog_compressed", "COMPRESS=DEFLATE BLOCKSIZE=128", "transform cog", 3, 300, 300},
    {"pixel_is_point", "", "point transform"},
    {"points", "", "points"},
    {"referenced", "", "transform"},
    {"rotated", "", "rotated"},
    {"referenced_big_endian", "ENDIANNESS=BIG", "transform"},
    {"profile_beside", "PROFILE=BASELINE", "transform"},
    {"statistics_beside", "", "aux"},
    {"statistics", "", "statistics"},
    {"no_data", "", "nodata"},
    {"colour_table", "", "colours"},
    {"metadata", "", "metadata transform"},
};

void WritePixels(GDALDataset& raster) {
    std::vector<float> pixels(static_cast<std::size_t>(raster.GetRasterXSize() * raster.GetRasterYSize()));
    std::iota(pixels.begin(), pixels.end(), 1.0F);
    for (int band = 1; band <= raster.GetRasterCount(); ++band)
        if (raster.GetRasterBand(band)->RasterIO(
                GF_Write, 0, 0, raster.GetRasterXSize(), raster.GetRasterYSize(), pixels.data(),
                raster.GetRasterXSize(), raster.GetRasterYSize(), GDT_Float32, 0, 0, nullptr) != CE_None)
            throw std::runtime_error("cannot make a raster");
}

void AddReference(GDALDataset& raster, const std::string& what) {
    OGRSpatialReference system;
    system.importFromEPSG(25833);
    double terms[6] = {300000, 10, what == "rotated" ? 2.0 : 0, 5000000, what == "rotated" ? 3.0 : 0, -10};
    GDAL_GCP points[4];
    GDALInitGCPs(4, points);
    for (int i = 0; i < 4; ++i) {
        points[i].dfGCPPixel = i % 2 * 30;
        points[i].dfGCPLine = i / 2 * 20;
        points[i].dfGCPX = 300000 + points[i].dfGCPPixel * 3;
        points[i].dfGCPY = 5000000 - points[i].dfGCPLine * 3 + i;
    }
    if (what == "points")
        raster.SetGCPs(4, points, &system);
    else if (raster.SetSpatialRef(&system) == CE_None)
        raster.SetGeoTransform(terms);
    GDALDeinitGCPs(4, points);
}

void Add(GDALDataset& raster, const std::string& what) {
    GDALRasterBand& band = *raster.GetRasterBand(1);
    GDALColorTable colours;
    const GDALColorEntry red = {200, 10, 10, 255};
    if (what == "transform" || what == "rotated" || what == "points") AddReference(raster, what);
    if (what == "point") raster.SetMetadataItem("AREA_OR_POINT", "Point");
    if (what == "nodata") band.SetNoDataValue(7);
    if (what == "statistics") band.SetStatistics(1, 200, 100, 50);
    if (what == "colours") colours.SetColorEntry(3, &red);
    if (what == "colours") band.SetColorTable(&colours);
    if (what == "metadata") raster.SetMetadataItem("TIFFTAG_SOFTWARE", "a test");
    if (what == "mask" || what == "msk") {
        CPLSetThreadLocalConfigOption("GDAL_TIFF_INTERNAL_MASK", what == "mask" ? "YES" : "NO");
        raster.CreateMaskBand(GMF_PER_DATASET);
        raster.GetRasterBand(1)->GetMaskBand()->Fill(255);
    }
}

/// What is done once the raster is a file.
void AddBehind(const std::string& path, const std::string& what, const TiffKind& kind) {
    const int steps[] = {2, 4};
    double statistics[4];
    const bool inside = what == "overviews" || what == "statistics";
    if (what == "odd") std::ofstream(path, std::ios::app) << '.';
    if (what == "second" || what == "cog") {
        const std::string copy = what == "cog" ? path + ".cog" : path;
        const std::string options = what == "cog" ? kind.options : "APPEND_SUBDATASET=YES";
        const GdalFiles::Dataset source = GdalFiles::Open(path);
        const GdalFiles::Dataset held(
            static_cast<GDALDataset*>(GetGDALDriverManager()->GetDriverByName("MEM")->CreateCopy(
                "", source.get(), 0, nullptr, nullptr, nullptr)));
        auto* driver = GetGDALDriverManager()->GetDriverByName(what == "cog" ? "COG" : "GTiff");
        GdalFiles::Dataset(driver->CreateCopy(copy.c_str(), held.get(), 0,
                                              CPLStringList(CSLTokenizeString(options.c_str())), nullptr,
                                              nullptr));
        std::rename(copy.c_str(), path.c_str());
        return;
    }
    if (what != "overviews" && what != "ovr" && what != "aux") return;
    const GdalFiles::Dataset raster = GdalFiles::Open(path, inside ? GA_Update : GA_ReadOnly);
    if (what == "aux")
        raster->GetRasterBand(1)->GetStatistics(0, 1, &statistics[0], &statistics[1], &statistics[2],
                                                &statistics[3]);
    else
        raster->BuildOverviews("NEAREST", 2, const_cast<int*>(steps), 0, nullptr, nullptr, nullptr);
}

void MakeTiff(const TiffKind& kind, const std::string& path) {
    std::istringstream words(kind.additions);
    const std::vector<std::string> additions(std::istream_iterator<std::string>(words), {});
    const auto has = [&](const char* word) { return std::ranges::count(additions, word) > 0; };
    const CPLStringList options(CSLTokenizeString(has("cog") ? "" : kind.options.c_str()));
    {
        auto* driver = GetGDALDriverManager()->GetDriverByName("GTiff");
        const GdalFiles::Dataset raster(
            driver->Create(path.c_str(), kind.width, kind.height, kind.bands, kind.type, options));
        for (const std::string& what : additions)
            Add(*raster, what);
        if (!has("empty")) WritePixels(*raster);
    }
    for (const std::string& what : additions)
        AddBehind(path, what, kind);
}

Subject TiffSubject(const TiffKind& kind) {
    return {std::string("TIFF ") + kind.name, "map.tif", EReferenceType::GeoTIFF,
            [&kind](const std::string& path) { MakeTiff(kind, path); }};
}

}  // namespace

std::vector<Subject> AllSubjects() {
    std::vector<Subject> all;
    std::ranges::transform(kTiffs, std::back_inserter(all), TiffSubject);
    for (const auto& [file, type] : {std::pair{"map.tfw", EReferenceType::WLD},
                                     {"map.rsf", EReferenceType::RSF},
                                     {"map.tab", EReferenceType::TAB},
                                     {"map.ers", EReferenceType::ERS}})
        all.push_back(
            {std::string("text ") + file, file, type, [type](const std::string& path) {
                 if (!Roads::Save(type, path, References::WithCorners(1, 2), Roads::kStrict).type.empty())
                     throw std::runtime_error("cannot make " + path);
             }});
    all.push_back({"PDF", "map.pdf", EReferenceType::GeoPDF,
                   [](const std::string& path) { std::ofstream(path) << RichPdf(200, 100); }});
    // Tagged, so that the tool appends to it.
    all.push_back({"convert: PDF appended", "map.pdf", EReferenceType::GeoPDF,
                   [](const std::string& path) {
                       std::ofstream(path)
                           << PlainPdf({"<< /Type /Catalog /Pages 2 0 R /StructTreeRoot 4 0 R >>",
                                        "<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
                                        "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 200 100] >>",
                                        "<< /Type /StructTreeRoot /K 5 0 R >>",
                                        "<< /Type /StructElem /S /Document /P 4 0 R >>"});
                   },
                   true});
    const auto add = [&all](const char* name, const char* prefix) -> Subject& {
        Subject copy = *std::ranges::find(all, name, &Subject::name);
        copy.name = prefix + copy.name;
        return all.emplace_back(copy);
    };
    add("PDF", "on two disks: ").other_disk = true;
    for (const char* name : {"TIFF plain", "TIFF bigtiff_tiled_all", "text map.tfw", "text map.tab", "PDF"})
        add(name, "convert: ").by_tool = true;
    for (const char* name : {"text map.tfw", "text map.tab"}) {
        Subject& made = add(name, "convert to a new file: ");
        made.make = [](const std::string&) {};
        made.by_tool = made.is_new = true;
    }
    return all;
}

RasterState DescribeRaster(const std::string& path) {
    const GdalFiles::Dataset raster = GdalFiles::Open(path);
    if (!raster) return {};
    // Of a large raster the first part has to do.
    const int width = std::min(raster->GetRasterXSize(), 1024);
    const int height = std::min(raster->GetRasterYSize(), 1024);
    std::ostringstream pixels;
    pixels << raster->GetRasterXSize() << " " << raster->GetRasterYSize();
    for (int i = 1; i <= std::min(raster->GetRasterCount(), 8); ++i) {
        GDALRasterBand& band = *raster->GetRasterBand(i);
        pixels << ", " << GDALChecksumImage(&band, 0, 0, width, height) << " " << band.GetMaskFlags() << " "
               << GDALChecksumImage(band.GetMaskBand(), 0, 0, width, height) << " " << band.GetNoDataValue()
               << " " << band.GetColorInterpretation();
        for (int level = 0; level < band.GetOverviewCount(); ++level)
            pixels << " " << band.GetOverview(level)->GetXSize();
    }
    std::ostringstream reference;
    reference.precision(17);
    double terms[6] = {};
    if (raster->GetGeoTransform(terms) == CE_None)
        for (const double term : terms)
            reference << term << " ";
    for (int i = 0; i < raster->GetGCPCount(); ++i)
        reference << raster->GetGCPs()[i].dfGCPX << " " << raster->GetGCPs()[i].dfGCPPixel << " ";
    const OGRSpatialReference* system = raster->GetSpatialRef();
    return {pixels.str(), reference.str() + (system && system->GetName() ? system->GetName() : "")};
}
