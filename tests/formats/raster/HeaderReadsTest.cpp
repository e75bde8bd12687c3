// Rasters that are read from their headers have every bit of GDAL's answer, in any order and
// from several threads. $MAPANCHOR_CORPUS adds the rasters of a folder.

#include "raster/geotiff/KnownRasters.h"
#include "raster/geotiff/UpdatedDirectory.h"

#include "common/policy/ReadNotes.h"

#include "GdalFiles.h"
#include "TempFolder.h"

#include <cpl_string.h>
#include <ogr_spatialref.h>

#include <algorithm>
#include <filesystem>
#include <random>
#include <sstream>
#include <thread>

namespace MapAnchor {
namespace {

using Tellurion::BString;

/// All that a read states; doubles to the last bit.
std::string Answer(const std::string& file, bool from_headers) {
    std::optional<HeaderReads> headers;
    if (from_headers) headers.emplace();
    const ReadNotes notes;
    std::ostringstream out;
    out << std::hexfloat;
    const auto raster = ReadRaster(BString(file), RasterKinds::OfName);
    if (!raster) return "nothing";
    out << raster->pixel_is_point << raster->point_count << ' ';
    for (const auto& point : raster->points)
        out << point.Column << ' ' << point.Row << ' ' << point.World.x << " " << point.World.y << ' ';
    if (const auto& t = raster->terms)
        out << t->a << ' ' << t->b << ' ' << t->c << ' ' << t->d << ' ' << t->e << ' ' << t->f << ' ';
    for (const BString& text : raster->well_known_texts)
        out << text.StdStr() << ' ';
    for (const auto& unit : {raster->vertical_unit, raster->auxiliary_vertical_unit})
        if (unit) out << unit->GetName().StdStr() << ' ';
    out << notes.width << ' ' << notes.height << ' ';
    for (const BString& name : notes.files)
        out << name.StdStr() << ' ';
    for (const BDiagnostic& remark : notes.diagnostics)
        out << remark.GetId().StdStr() << remark.GetText().StdStr() << ' ';
    return out.str();
}

void Make(const std::string& path, int system, int place, const char* options, int number) {
    auto* driver = GetGDALDriverManager()->GetDriverByName("GTiff");
    const CPLStringList words(CSLTokenizeString(options));
    const GdalFiles::Dataset raster(
        driver->Create(path.c_str(), 40 + number, 30, 1 + number % 3, GDT_Int16, words.List()));
    OGRSpatialReference reference;
    if (system > 0) reference.importFromEPSG(system);
    if (system > 0 && place != 3) raster->SetSpatialRef(&reference);
    const double x = 676000.1 + number / 3.0;
    double north_up[6] = {x, 0.7, 0, 5242000.3, 0, -0.7};
    double turned[6] = {x, 0.7, 0.1 + number, 5242000.3, 0.2, -0.7};
    if (place == 1) raster->SetGeoTransform(north_up);
    if (place == 2) raster->SetGeoTransform(turned);
    char none[] = "";
    const GDAL_GCP points[] = {
        {none, none, 0, 0, x, 5, 0}, {none, none, 9, 0, 7, 5, 0}, {none, none, 9, 9, 7, 4, 0}};
    if (place == 3) raster->SetGCPs(3, points, &reference);
    if (number % 4 == 1) raster->SetMetadataItem("TIFFTAG_IMAGEDESCRIPTION", "a sheet");
    if (number % 4 == 2) raster->GetRasterBand(1)->SetStatistics(number, 2, 3, 4);
    if (number % 5 == 3) raster->GetRasterBand(1)->SetUnitType(number % 2 ? "ft" : "m");
    if (number % 5 == 4) raster->GetRasterBand(1)->SetNoDataValue(-1);
    if (number % 3 == 1) raster->SetMetadataItem("AREA_OR_POINT", "Point");
    const int step = 2;
    if (number % 6 == 5)
        raster->BuildOverviews("NEAREST", 1, const_cast<int*>(&step), 0, nullptr, nullptr, nullptr);
}

std::vector<std::string> MakeMany(const TempFolder& folder) {
    GDALAllRegister();
    std::vector<std::string> files;
    for (const int system : {0, 32632, 4326, 2056, 2277, 27700, 5555})
        for (const int place : {0, 1, 2, 3})
            for (const char* options : {"", "TILED=YES BLOCKXSIZE=16 BLOCKYSIZE=16 BIGTIFF=YES",
                                        "ENDIANNESS=BIG COMPRESS=LZW INTERLEAVE=BAND"})
                for (int i = 0; i < 3; ++i) {
                    const int number = static_cast<int>(files.size());
                    files.push_back(folder / std::string("a").append(std::to_string(number)).append(".tif"));
                    Make(files.back(), system, place, options, number);
                }
    // What is beside a raster may place it.
    const std::string world = "0.5\n0\n0\n-0.5\n7\n8\n";
    folder.Write("a1.tfw", world);
    folder.Write("a4.TFW", world);
    folder.Write("a7.tif.aux.xml", "<PAMDataset><GeoTransform>1,2,0,3,0,-2</GeoTransform></PAMDataset>");
    folder.Write("a40.wld", world);
    return files;
}

void ExpectAllAlike(std::vector<std::string> files) {
    std::map<std::string, std::string> wanted;
    for (const std::string& file : files)
        wanted[file] = Answer(file, false);
    const long before = HeaderReads::Count();
    const auto compare = [&wanted](std::vector<std::string> order, unsigned seed) {
        std::shuffle(order.begin(), order.end(), std::mt19937(seed));
        for (const std::string& file : order)
            EXPECT_EQ(Answer(file, true), wanted.at(file)) << file;
    };
    std::vector<std::thread> threads;
    for (unsigned seed = 0; seed < 8; ++seed)
        threads.emplace_back(compare, files, seed);
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_GT(HeaderReads::Count(), before + static_cast<long>(files.size())) << "hardly any from its header";
}

// Almost the same header, and another answer of GDAL's, either way round.
TEST(HeaderReads, ASmallDifferenceCounts) {
    const TempFolder folder;
    GDALAllRegister();
    const auto make = [&](const std::string& path, bool is_palette) {
        auto* driver = GetGDALDriverManager()->GetDriverByName("GTiff");
        const GdalFiles::Dataset raster(driver->Create(path.c_str(), 20, 10, 1, GDT_Byte, nullptr));
        GDALColorTable colours;
        const GDALColorEntry grey = {9, 9, 9, 255};
        colours.SetColorEntry(1, &grey);
        if (is_palette) raster->GetRasterBand(1)->SetColorTable(&colours);
        raster->GetRasterBand(1)->SetStatistics(1, 2, 3, 4);
        raster->GetRasterBand(1)->SetUnitType("ft");
        return path;
    };
    const std::string sound = TempFolder::Slurp(make(folder / "sound.tif", false));
    std::string spoiled = sound;
    const std::size_t value = sound.find(">1</Item>");
    ASSERT_NE(value, std::string::npos);
    spoiled[value + 1] = '<';
    const std::string palette = TempFolder::Slurp(make(folder / "palette.tif", true));
    std::string without = palette;
    const std::size_t tag = palette.find(std::string("\x40\x01\x03\x00", 4));
    ASSERT_NE(tag, std::string::npos);
    without[tag] = '\x3b';
    for (const auto& [first, second] :
         {std::pair(sound, spoiled), {spoiled, sound}, {palette, without}, {without, palette}})
        for (const std::string& content : {first, second}) {
            const std::string file = folder.Write("one.tif", content);
            EXPECT_EQ(Answer(file, true), Answer(file, false));
        }
}

// An ampersand among the bytes of a number is no reason to ask GDAL; the reference of a character is.
TEST(HeaderReads, AmpersandsInNumbersDoNotCount) {
    const TempFolder folder;
    GDALAllRegister();
    const auto make = [&](const char* name, double x, const char* unit) {
        auto* driver = GetGDALDriverManager()->GetDriverByName("GTiff");
        const GdalFiles::Dataset raster(driver->Create((folder / name).c_str(), 8, 8, 1, GDT_Byte, nullptr));
        double terms[6] = {x, 1, 0, 5, 0, -1};
        raster->SetGeoTransform(terms);
        if (*unit) raster->GetRasterBand(1)->SetUnitType(unit);
    };
    const auto from_header = [&](const char* name) {
        const long before = HeaderReads::Count();
        EXPECT_EQ(Answer(folder / name, true), Answer(folder / name, false));
        return HeaderReads::Count() - before;
    };
    constexpr double kAmpersands = 0x1.26262626263b2p+19;  // bytes 26 and, once, the 3b of a semicolon
    make("plain.tif", 7, "");
    make("marks.tif", kAmpersands, "");
    make("unit.tif", 7, "a&b");
    from_header("plain.tif");
    EXPECT_EQ(from_header("marks.tif"), 1);
    from_header("unit.tif");
    EXPECT_EQ(from_header("unit.tif"), 0);
}

TEST(HeaderReads, AnswerAsGdalDoes) {
    const TempFolder folder;
    ExpectAllAlike(MakeMany(folder));
    const char* const corpus = std::getenv("MAPANCHOR_CORPUS");
    std::vector<std::string> real;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(corpus ? corpus : folder / ""))
        if (const std::string name = entry.path(); name.ends_with(".tif") || name.ends_with(".tiff"))
            real.push_back(name);
    if (corpus) ExpectAllAlike(real);
}

// What the directory of an update shows without GDAL: the place that was asked for, and all else
// as it was. A value that differs is a doubt.
TEST(UpdatedDirectory, IsComparedValueByValue) {
    const TempFolder folder;
    RasterState wanted;
    wanted.transform = {500000, 10, 0, 4100000, 0, -10};
    const std::string file = GdalFiles::MakeTiff(folder / "map.tif", 1, [&wanted](GDALDataset& raster) {
        raster.SetGeoTransform(wanted.transform->data());
    });
    const std::string whole = TempFolder::Slurp(file);
    const auto number = [&whole](std::size_t at) {
        return static_cast<unsigned char>(whole[at]) + 256U * static_cast<unsigned char>(whole[at + 1]);
    };
    const std::size_t start = number(4);
    const std::string directory = whole.substr(start, 2 + 12 * number(start) + 4);
    const auto shows = [&](std::size_t changed) {
        std::string tail = directory;
        if (changed < tail.size()) ++tail[changed];
        const auto staged = StagedFile::Open(file, StagedFile::Access::Update);
        const char end[] = {static_cast<char>(whole.size() & 255), static_cast<char>(whole.size() >> 8)};
        staged->WriteAt(whole.size(), tail);
        staged->WriteAt(4, end);
        return ShowsWanted(*staged, wanted);
    };
    // The byte of an entry at which its value, or the place of its values, begins.
    const auto value_of = [&directory](std::string_view tag) { return directory.find(tag) + 8; };
    EXPECT_TRUE(shows(directory.size()));
    for (const std::string_view tag : {std::string_view("\0\1\3", 3), std::string_view("\x11\1\4", 3),
                                       std::string_view("\x82\x84\x0c", 3)})
        EXPECT_FALSE(shows(value_of(tag))) << "the width, an offset or the tie point, at " << value_of(tag);
    EXPECT_FALSE(shows(directory.size() - 1)) << "the next directory";
    (*wanted.transform)[0] += 0.01;
    EXPECT_FALSE(shows(directory.size()));
}

}  // namespace
}  // namespace MapAnchor
