// The description of a page: what is on it, and what stands in the way of a read.

#include "GeoPdfFiles.h"
#include "TempFolder.h"

#include <MapAnchor/BGeoPDFPage.h>

#include <gtest/gtest.h>

namespace MapAnchor {
namespace {

using Tellurion::BString;

BGeoPDFPage DescribeText(const std::string& pdf) {
    const TempFolder folder;
    return BGeoPDFPage::Describe(BString(folder.Write("map.pdf", pdf)));
}

TEST(GeoPdfPage, ListsViewportsAndMarksTheFirst) {
    GeoPdf::Viewport map;
    map.page = "/MediaBox [0 0 612 792] /TrimBox [9 9 600 700] /Rotate -90 /UserUnit 2.5";
    map.more_viewports = " << /Name (Inset) /BBox [10 20 30 60] /Measure 4 0 R >>";
    const BGeoPDFPage page = DescribeText(map.Text());
    EXPECT_TRUE(page.Loaded);
    EXPECT_EQ(page.Dialect, BGeoPDFPage::EDialect::Measure);
    EXPECT_EQ(page.Fault, BString());
    EXPECT_EQ(page.Rotate, 270);
    EXPECT_EQ(page.UserUnit, 2.5);
    EXPECT_EQ(page.TrimBox.Right, 600);
    EXPECT_EQ(page.CropBox.Top, 792);  // by the fall-back that a read follows
    ASSERT_EQ(page.Maps.size(), 2U);
    EXPECT_TRUE(page.Maps[0].InUse);
    EXPECT_EQ(page.Maps[0].CoordSys, BString("WGS 84, EPSG:4326"));
    EXPECT_FALSE(page.Maps[1].InUse);
    EXPECT_EQ(page.Maps[1].Name, BString("Inset"));
    EXPECT_EQ(page.Maps[1].Area, 800.0);
}

TEST(GeoPdfPage, ListsLGIDictsAndMarksTheLargest) {
    GeoPdf::LGIDict map;
    GeoPdf::LGIDict inset;
    inset.neatline = "/Neatline [(0) (0) (0) (10) (10) (10) (10) (0)]";
    inset.description = "/Description (Inset)";
    std::swap(map, inset);
    map.more_dicts = inset.Entry();
    const BGeoPDFPage page = DescribeText(map.Text());
    EXPECT_EQ(page.Dialect, BGeoPDFPage::EDialect::LGIDict);
    ASSERT_EQ(page.Maps.size(), 2U);
    EXPECT_EQ(page.Maps[0].Name, BString("Inset"));
    EXPECT_EQ(page.Maps[0].Area, 100.0);
    EXPECT_FALSE(page.Maps[0].InUse);
    EXPECT_TRUE(page.Maps[1].InUse);
    EXPECT_EQ(page.Maps[1].Box.Right, 600.0);
}

TEST(GeoPdfPage, BoxOfACropType) {
    GeoPdf::Viewport map;
    map.page = "/MediaBox [0 0 612 792] /CropBox [10 10 602 782] /TrimBox [20 20 30 30]";
    const BGeoPDFPage page = DescribeText(map.Text());
    EXPECT_EQ(page.BoxForCropType(4).Left, 10);
    EXPECT_EQ(page.BoxForCropType(2).Left, 0);  // the media box, as in a read
    EXPECT_EQ(page.BoxForCropType(5).Left, 0);
    EXPECT_EQ(page.BoxForCropType(0).Left, 10);
}

struct RefusalCase {
    const char* name;
    std::string pdf;
    const char* fault;
    const char* explanation;
};

std::string Viewport(void (*change)(GeoPdf::Viewport&)) {
    GeoPdf::Viewport map;
    change(map);
    return map.Text();
}
std::string LGIDict(void (*change)(GeoPdf::LGIDict&)) {
    GeoPdf::LGIDict map;
    change(map);
    return map.Text();
}

const RefusalCase kRefusals[] = {
    {"viewport_behind_a_reference", PagePdf("/MediaBox [0 0 9 9] /VP [4 0 R]").Add("<< >>").Text(),
     "No Geospatial data found", "An entry of \"VP\" is expected to be a dictionary in place"},
    {"direct_measure", Viewport([](auto& m) { m.measure_value = m.Measure(); }),
     "The key Measure is not of type", "\"Measure\" is expected to be a reference"},
    {"direct_system", Viewport([](auto& m) { m.gcs_value = "<< /Type /GEOGCS /EPSG 4326 >>"; }),
     "The key GCS is not of type", "\"GCS\" is expected to be a reference"},
    {"one_dictionary_for_an_array", PagePdf("/MediaBox [0 0 9 9] /LGIDict << >>").Text(),
     "The key LGIDict is not of type", "one dictionary stands in its place"},
    {"reference_to_one_dictionary", PagePdf("/MediaBox [0 0 9 9] /LGIDict 4 0 R").Add("<< >>").Text(),
     "The key LGIDict is not of type", "a reference to one dictionary stands in its place"},
    {"empty_array", PagePdf("/MediaBox [0 0 9 9] /LGIDict []").Text(), "", "the array is empty"},
    {"plain_numbers", LGIDict([](auto& m) { m.ctm = "/CTM [1 0 0 1 5 5]"; }), "", "plain numbers"},
    {"zone_as_a_string",
     LGIDict([](auto& m) { m.projection = "<< /Type /P /ProjectionType (UT) /Zone (33) >>"; }),
     "The key Zone is not of type", "\"Zone\" is expected to be a whole number"},
    {"easting_as_a_number",
     LGIDict([](auto& m) { m.projection = "<< /Type /P /ProjectionType (TC) /FalseEasting 5 >>"; }),
     "The key FalseEasting is not of type", "\"FalseEasting\" of the projection is expected to be a string"},
    {"inherited_media_box",
     PagePdf("/LGIDict [ " + GeoPdf::LGIDict().Entry() + " ]").Inherit("/MediaBox [0 0 9 9]").Text(), "",
     "\"MediaBox\" of its own"},
    {"no_pdf_at_all", "just text", "", ""},
};

class GeoPdfRefusal : public testing::TestWithParam<RefusalCase> {};

TEST_P(GeoPdfRefusal, SaysWhatWasExpected) {
    const RefusalCase& c = GetParam();
    const BGeoPDFPage page = DescribeText(c.pdf);
    const std::string fault = page.Fault.StdStr();
    const std::string explanation = page.Explanation.StdStr();
    EXPECT_NE(fault.find(c.fault), std::string::npos) << fault;
    EXPECT_NE(explanation.find(c.explanation), std::string::npos) << explanation;
    EXPECT_FALSE(fault.empty() && explanation.empty());
}

INSTANTIATE_TEST_SUITE_P(Rows, GeoPdfRefusal, testing::ValuesIn(kRefusals),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace MapAnchor
