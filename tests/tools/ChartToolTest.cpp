// Rasters that are known by their headers, and charts, at the command line.

#include <gdal.h>
#include <gtest/gtest.h>

#include "../formats/raster/ChartFiles.h"
#include "HeaderFiles.h"
#include "RunTool.h"

namespace {

using namespace MapAnchor;

TEST(ChartTool, InfoNamesTheKindOrRefuses) {
    const ToolFolder folder;
    const std::string chart = "KNP/GD=WGS84\nREF/1,0,0,1,1\nREF/2,9,0,1,2\nREF/3,9,9,2,2\n";
    folder.Write("TPSGI001.gen", AdrgLeader() + "ADRG" + AdrgValues().Record("TPSGI001"));
    const std::string sid = HeaderFiles::SidPlace(500005, 4099995, 10, 10) +
                            HeaderFiles::SidShort(HeaderFiles::kSidProjected, 32633);
    const HeaderFiles::GeoTags north{
        {}, {}, {10, 0, 0, 500000, 0, 10, 0, 4100000, 0, 0, 0, 0, 0, 0, 0, 1}, {3072, 0, 1, 32633}, ""};
    // Whatever the anchor of the kind, the geotransform is that of the outer edge.
    const std::string place = R"(,"coordSys":{"epsg":"EPSG:32633"},"geoTransform":[500000,10,0,4100000,0,)";
    FrameFile frame;
    frame.coverage = {11.536, -100, 10, -100, 11.536, -96.928, 10, -96.928, 150, 150, 0.001, 0.002};
    const struct {
        std::string file;
        std::string content;
        std::string kind;        ///< and more members
        const char* doubt = "";  ///< the id of a warning
    } cases[] = {
        {"chart.kap", chart, R"("KAP","pixelAnchor":"corner","usedFile":"%chart.kap")"},
        {"chart.dat", chart, R"("KAP","pixelAnchor":"corner","usedFile":"%chart.dat")"},
        {"map.dat", "1\n0\n0\n-1\n5\n5\n", R"("WLD","pixelAnchor":"corner")", "guessed-world-file"},
        {"frame.on1", frame.Bytes(), R"("CADRG","pixelAnchor":"centre")"},
        {"TPSGI001.img", AdrgLeader(true), R"("ADRG","pixelAnchor":"centre","usedFile":"%TPSGI001.gen")"},
        {"quad.doq", DoqFile().Bytes(),
         R"("DOQ","pixelAnchor":"corner","usedFile":"%quad.doq","diagnostics":[{"severity":"note"}])"},
        {"nad27.doq", DoqFile{.datum = " 1"}.Bytes(), R"("DOQ","diagnostics":[])"},
        {"nad83.doq", DoqFile{.datum = " 4"}.Bytes(), R"("DOQ")", "the datum NAD83"},
        {"a.ecw", HeaderFiles::Ecw2({.datum = "EPSG:32633", .projection = "EPSG:32633"}),
         R"("ECW","pixelAnchor":"corner")" + place + "-10]"},
        {"b.sid", HeaderFiles::Sid2(sid), R"("SID","pixelAnchor":"centre")" + place + "-10]"},
        {"c.jp2", HeaderFiles::Jp2(HeaderFiles::Placed({3072, 0, 1, 32633})),
         R"("JP2","pixelAnchor":"corner")" + place + "-10]"},
        {"north.jp2", HeaderFiles::Jp2(north), R"("SID","pixelAnchor":"centre")" + place + "10]"},
    };
    for (const auto& test : cases) {
        folder.Write(test.file, test.content);
        folder.ExpectRun("--json %" + test.file, *test.doubt ? 3 : 0, "\"referenceType\":" + test.kind,
                         {test.doubt});
    }
    for (const char* file : {"%a.ecw", "%b.sid", "%north.jp2"})
        folder.ExpectRun(std::string("--size 20x10 ") + file, 0, "",
                         {"upper left   500000, 4100000  (longitude"});
    for (const char* words :
         {"info --type doq %quad.doq", "convert %map.dat %out.kap", "convert %map.dat %out.doq",
          "convert --to kap %map.dat %out.kap", "convert --to doq %map.dat %out.doq"})
        folder.ExpectRun(words, 5);
}

// GDAL knows the size, but not of a chart whose header it would read for minutes.
TEST(ChartTool, AHeaderOfAnyLengthIsReadInLittleTime) {
    const ToolFolder folder;
    for (const unsigned lines : {500U, 10500U}) {
        std::string chart =
            "VER/2.0\nBSB/NA=x,RA=4,3\nKNP/GD=WGS84\nRGB/1,0,0,0\nREF/1,0,0,1,1\n"
            "REF/2,3,0,1,2\nREF/3,3,2,0,2\n";
        for (unsigned line = 0; line < lines; ++line)
            chart += "P/1\n";
        chart.append("\x1A\0\7", 3);
        std::string rows;
        for (char row = 1; row < 4; ++row) {
            rows += Number(chart.size(), 4, true);
            chart += {row, '\3', '\0'};
        }
        chart.append(2000, '\0');
        rows += Number(chart.size(), 4, true);
        folder.Write("long.kap", chart + rows);
        folder.ExpectRun("preview %long.kap", 0, "", {"4 by 3 pixels"});
    }
}

// A JPEG 2000 without a scale is placed by GDAL, which counts from the corner.
TEST(ChartTool, PointsOfAJpeg2000CountFromTheCorner) {
    GDALAllRegister();
    GDALDriverH writer = GDALGetDriverByName("JP2OpenJPEG");
    if (!writer) GTEST_SKIP() << "GDAL has no writer of JPEG 2000";
    const ToolFolder folder;
    GDALDatasetH raster = GDALCreate(GDALGetDriverByName("MEM"), "", 64, 48, 1, GDT_Byte, nullptr);
    GDAL_GCP points[4] = {};
    GDALInitGCPs(4, points);
    for (int i = 0; i < 4; ++i) {
        points[i].dfGCPPixel = i % 2 * 64;
        points[i].dfGCPLine = i / 2 * 48;
        points[i].dfGCPX = 500000 + 10 * points[i].dfGCPPixel;
        points[i].dfGCPY = 4000000 - 10 * points[i].dfGCPLine;
    }
    GDALSetGCPs(raster, 4, points, PrjOf("32633").c_str());
    GDALClose(GDALCreateCopy(writer, (folder / "p.jp2").c_str(), raster, 0, nullptr, nullptr, nullptr));
    GDALClose(raster);
    GDALDeinitGCPs(4, points);
    folder.ExpectRun("--json %p.jp2", 0,
                     R"("pixelAnchor":"corner","geoTransform":[500000,10,0,4000000,0,-10])");
}

}  // namespace
