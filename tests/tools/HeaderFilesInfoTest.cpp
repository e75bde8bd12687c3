#include <gtest/gtest.h>

#include "HeaderFiles.h"
#include "RunTool.h"
#include "TempFolder.h"

namespace {

using nlohmann::json;

struct HeaderCase {
    const char* name;
    std::string bytes;
    const char* kind;
    const char* anchor;
    json transform;  ///< from the outer corner
};

// Whatever the anchor of the kind, the geotransform and the corners are those of the outer edge.
TEST(Info, ReadsImagesByTheirHeaders) {
    const json corner = json::array({500000.0, 10.0, 0.0, 4100000.0, 0.0, -10.0});
    const std::string records = HeaderFiles::SidPlace(500005, 4099995, 10, 10) +
                                HeaderFiles::SidShort(HeaderFiles::kSidProjected, 32633);
    const HeaderFiles::GeoTags north{
        {}, {}, {10, 0, 0, 500000, 0, 10, 0, 4100000, 0, 0, 0, 0, 0, 0, 0, 1}, {3072, 0, 1, 32633}, ""};
    const HeaderCase cases[] = {
        {"a.ecw", HeaderFiles::Ecw2({.datum = "EPSG:32633", .projection = "EPSG:32633"}), "ECW", "corner",
         corner},
        {"b.sid", HeaderFiles::Sid2(records), "SID", "centre", corner},
        {"c.jp2", HeaderFiles::Jp2(HeaderFiles::Placed({3072, 0, 1, 32633})), "JP2", "corner", corner},
        {"north_going.jp2", HeaderFiles::Jp2(north), "SID", "centre",
         json::array({500000.0, 10.0, 0.0, 4100000.0, 0.0, 10.0})},
    };
    const TempFolder folder;
    for (const HeaderCase& c : cases) {
        SCOPED_TRACE(c.name);
        const std::string file = folder.Write(c.name, c.bytes);
        const ToolRun text = RunTool({"info", "--size", "20x10", file});
        EXPECT_NE(text.out.find("upper left   500000, 4100000\n"), std::string::npos) << text.out;
        const ToolRun run = RunTool({"info", "--json", file});
        EXPECT_EQ(run.status, 0) << run.err;
        const json object = run.Objects().at(0);
        EXPECT_EQ(object["mapanchor"]["referenceType"], c.kind);
        EXPECT_EQ(object["mapanchor"]["pixelAnchor"], c.anchor);
        EXPECT_EQ(object["mapanchor"]["coordSys"]["epsg"], "EPSG:32633");
        EXPECT_EQ(object["geoTransform"], c.transform);
    }
}

}  // namespace
