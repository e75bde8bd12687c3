// Where each value of a reference is written, as info --explain shows it.

#include <gtest/gtest.h>

#include "../formats/raster/ChartFiles.h"
#include "../pdf/import/GeoPdfFiles.h"
#include "GdalFiles.h"
#include "HeaderFiles.h"
#include "RunTool.h"

#include <map>

namespace {

using namespace MapAnchor;

struct ExplainCase {
    const char* file;
    const char* value;
    const char* place;       ///< the beginning of it
    std::string bytes = {};  ///< that the file has at the byte that the place names
};

void MakePlacedTiff(const std::string& path) {
    GdalFiles::MakeTiff(path, 1, [](GDALDataset& raster) {
        double place[] = {600000, 10, 0, 4100000, 0, -10};
        OGRSpatialReference system;
        system.importFromEPSG(32633);
        raster.SetGeoTransform(place);
        raster.SetSpatialRef(&system);
    });
}

TEST(Explain, EachValueHasAPlace) {
    const ToolFolder folder;
    folder.Write("a.tfw", "10\n0\n0\n-10\n5\n5\n");
    folder.Write("a.prj", PrjOf("32633"));
    folder.Write("b.rsf",
                 "4 3\na 0 0 0 0 0 0 1\nb 0 9 0 0 9 0 1\nc 9 9 0 9 9 0 1\nNONE\nNONE\nNONE\nNONE\n0\n" +
                     PrjOf("32633"));
    folder.ExpectRun("convert --size 9x9 --image a.png %b.rsf %c.tab", 0);
    folder.ExpectRun("convert --size 9x9 --image a.png %a.tfw %d.ers", 0);
    folder.Write("l.pdf", RichPdf(720, 360));
    folder.ExpectRun("convert --overwrite --dpi 72 %a.tfw %l.pdf", 0);
    folder.Write("e.kap", "!\nBSB/NA=x,RA=9,9\nKNP/GD=WGS84\nREF/1,0,0,1,1\nREF/2,9,0,1,2\nREF/3,9,9,2,2\n");
    folder.Write("f.doq", DoqFile().Bytes());
    folder.Write("g.on1", FrameFile().Bytes());
    folder.Write("TPSGI001.gen", AdrgLeader() + "ADRG" + AdrgValues().Record("TPSGI001"));
    folder.Write("TPSGI001.img", AdrgLeader(true));
    folder.Write("h.ecw", HeaderFiles::Ecw2({}));
    folder.Write("i.sid", HeaderFiles::Sid2(HeaderFiles::SidPlace(500005, 4099995, 10, 10)));
    folder.Write("j.jp2", HeaderFiles::Jp2(HeaderFiles::Placed({3072, 0, 1, 32633})));
    MakePlacedTiff(folder / "k.tif");
    const auto number = [](double value) { return HeaderFiles::Bytes().LittleDouble(value).text; };
    const std::string scale = number(10);
    const ExplainCase cases[] = {
        {"a.tfw", "position", "lines 5 and 6"},
        {"a.tfw", "system", "line 1"},
        {"b.rsf", "points", "lines 2 to 4"},
        {"b.rsf", "system", "line 10"},
        {"c.tab", "points", "lines 8 to 10"},
        {"c.tab", "system", "line 11"},
        {"d.ers", "pixel size", "line 18 (Xdimension), line 19 (Ydimension)"},
        {"e.kap", "points", "lines 4 to 6 (REF)"},
        {"e.kap", "system", "line 3 (KNP GD)"},
        {"f.doq", "position", "byte", "   0.500000125000000D+06"},
        {"f.doq", "pixel size", "byte", "         1.5"},
        {"g.on1", "position", "byte"},
        {"TPSGI001.img", "pixel size", "byte"},
        {"h.ecw", "pixel size", "byte 25", scale},
        {"h.ecw", "position", "byte 41", number(500000)},
        {"i.sid", "position", "byte"},
        {"j.jp2", "system", "byte"},
        {"k.tif", "pixel size", "tag 33550 (ModelPixelScale), byte", scale},
        {"k.tif", "position", "tag 33922 (ModelTiepoint), byte",
         number(0) + number(0) + number(0) + number(600000)},
        {"k.tif", "system", "tag 34735 (GeoKeys), byte"},
        {"l.pdf", "points", "object"},
        {"l.pdf", "system", "object"},
    };
    std::map<std::string, nlohmann::json> explained;
    for (const ExplainCase& test : cases) {
        SCOPED_TRACE(std::string(test.file) + ", " + test.value);
        auto& origins = explained[test.file];
        if (origins.empty())
            origins = RunTool({"info", "--json", "--explain", "--strict", "pdf", folder / test.file})
                          .Ours()["origins"];
        std::string place;
        for (const auto& origin : origins)
            if (origin["value"] == test.value) place = origin["place"].get<std::string>();
        EXPECT_EQ(place.substr(0, std::string(test.place).size()), test.place) << origins;
        const std::size_t at = place.find("byte ");
        if (test.bytes.empty() || at == std::string::npos) continue;
        EXPECT_EQ(
            TempFolder::Slurp(folder / test.file).substr(std::stoul(place.substr(at + 5)), test.bytes.size()),
            test.bytes);
    }
}

TEST(Explain, SourcesAndOptionsAreNamed) {
    const ToolFolder folder;
    GdalFiles::MakeTiff(folder / "a.tif");
    folder.Write("a.tfw", "10\n0\n0\n-10\n5\n5\n");
    folder.Write("a.PRJ", PrjOf("32633"));
    folder.ExpectRun("info --explain --json %a.tif", 0,
                     R"("origins":[{"value":"pixel size","file":"%a.tfw"},{},{},
                        {"value":"system","file":"%a.PRJ","place":"line 1"},{"value":"size","file":"%a.tif"}])");
    folder.ExpectRun("info --explain --override-crs EPSG:25833 %a.tif", 0, "",
                     {"system     -", "given by the caller"});
    folder.ExpectRun("info --json %a.tif", 0, R"("origins":null)");
}

}  // namespace
