#include <MapAnchor/BControlPointFile.h>

#include "TempFolder.h"
#include "Thrown.h"

#include <gtest/gtest.h>

using MapAnchor::BControlPointFile;
using Tellurion::BControlPoint;
using Tellurion::BString;

namespace {

constexpr const char* kQgis =
    "#CRS: EPSG:25832\nmapX,mapY,sourceX,sourceY,enable,dX,dY,residual\n"
    "676000.5,5242000.25,10.5,-20.25,1,0,0,0\n676100,5242000,110.5,-20.25,0,0,0,0\n";

/// All spellings of the points (10.5, 20.25) at (676000.5, 5242000.25) and (110.5, 20.25).
TEST(ControlPointFile, ReadsEverySpelling) {
    using Format = BControlPointFile::EFormat;
    struct Row {
        const char* name;
        Format format;
        const char* system;
        const char* text;
        const char* order = "";
    };
    const TempFolder folder;
    for (
        const Row& row : {
            Row{"new", Format::Points, "EPSG:25832", kQgis},
            Row{"old", Format::Points, "",
                "mapX,mapY,pixelX,pixelY,enable\r\n676000.5,5242000.25,10.5,-20.25,1\r\n676100,5242000,110.5,"
                "-20.25,0\r\n"},
            Row{"comma", Format::Table, "",
                "\xef\xbb\xbfName;Pixel;Line;Easting;Northing\nA;10,5;20,25;676000,5;5242000,25\n\"B;\"\"2\";"
                "110,5;20,25;676100;5242000\n"},
            Row{"tabs", Format::Table, "",
                "10.5\t20.25\t676000.5\t5242000.25\n110.5\t20.25\t676100\t5242000\n", "pixel,line,x,y"},
            Row{"skipped", Format::Table, "",
                "col,row,x,y\n9,10.5,20.25,676000.5,5242000.25\n9,110.5,20.25,676100,5242000\n",
                "-,pixel,line,x,y"},
            Row{"pixelX of others", Format::Table, "",
                "pixelX,pixelY,easting,northing\n10.5,20.25,676000.5,5242000.25\n110.5,20.25,676100,"
                "5242000\n"},
            Row{"lon", Format::Table, "EPSG:4326",
                "x,y,lat,lon\n10.5,20.25,5242000.25,676000.5\n110.5,20.25,5242000,676100\n"},
            Row{"geojson", Format::GeoJson, "urn:ogc:def:crs:EPSG::25832",
                R"({"type":"FeatureCollection","crs":{"type":"name","properties":{"name":"urn:ogc:def:crs:EPSG::25832"}},
                 "features":[{"type":"Feature","properties":{"pixel":10.5,"line":20.25},
                 "geometry":{"type":"Point","coordinates":[676000.5,5242000.25]}},{"type":"Feature",
                 "properties":{"col":110.5,"row":20.25},"geometry":{"type":"Point","coordinates":[676100,5242000]}}]})"},
            Row{"iiif", Format::Iiif, "EPSG:4326",
                R"({"type":"AnnotationPage","items":[{"type":"Annotation","target":{"source":{"width":400,"height":300}},
                 "body":{"type":"FeatureCollection","features":[{"properties":{"resourceCoords":[10.5,20.25]},
                 "geometry":{"type":"Point","coordinates":[676000.5,5242000.25]}},
                 {"properties":{"resourceCoords":[110.5,20.25]},
                 "geometry":{"type":"Point","coordinates":[676100,5242000]}}]}}]})"},
            Row{"options", Format::Gcps, "EPSG:25832",
                "gdal_translate -a_srs EPSG:25832 -gcp 10.5 20.25 676000.5 5242000.25 \\\n-gcp 110.5 20.25 "
                "676100 5242000 7 a.tif b.tif"},
            Row{"vrt", Format::Vrt, "EPSG:25832",
                "<VRTDataset><GCPList Projection=\"EPSG:25832\">\n<GCP Id=\"&lt;1\" Pixel=\"10.5\" "
                "Line=\"20.25\" "
                "X=\"676000.5\" Y=\"5242000.25\"/><GCP Id=\"2\" Pixel=\"110.5\" Line=\"20.25\" X=\"676100\" "
                "Y=\"5242000\" "
                "Z=\"7\"/></GCPList></VRTDataset>"},
        }) {
        const std::string path = folder.Write("points.txt", row.text);
        const auto file = BControlPointFile::Read(BString(path), BString(row.order));
        ASSERT_EQ(file.Points.size(), 2U) << row.name;
        const BControlPoint& point = file.Points[0];
        EXPECT_TRUE(point.Column == 10.5 && point.Row == 20.25 && point.World.x == 676000.5 &&
                    point.World.y == 5242000.25 && point.Enabled)
            << row.name;
        EXPECT_EQ(file.Points[1].Column, 110.5) << row.name;
        EXPECT_EQ(file.Format, row.format) << row.name;
        EXPECT_EQ(file.CoordSys.StdStr(), row.system) << row.name;
        // And out again, in every format, with every digit.
        for (const char* out : {"a.points", "a.csv", "a.tsv", "a.geojson", "a.gcps"}) {
            file.Write(BString(folder / out));
            const auto back = BControlPointFile::Read(BString(folder / out));
            EXPECT_EQ(back.Points[0].Row, 20.25) << row.name << out;
            EXPECT_EQ(back.Points[0].World.y, 5242000.25) << row.name << out;
        }
    }
}

TEST(ControlPointFile, QgisPointsGoOutAsTheyCameIn) {
    const TempFolder folder;
    BControlPointFile::Read(BString(folder.Write("in.points", kQgis))).Write(BString(folder / "out.points"));
    EXPECT_EQ(TempFolder::Slurp(folder / "out.points"), kQgis);
}

TEST(ControlPointFile, FailuresNameThePlace) {
    const TempFolder folder;
    for (const auto& [text, words] : {
             std::pair{"pixel,line,x,y\n1,2,3,4\n1,a2,3,4\n", "in line 3, column 3: \"a2\" is not a number"},
             {"pixel,line,x,y\n1,2,3\n", "in line 2, column 1: the row has 3 cells"},
             {"1,2,3,4\n", "has no header: name its columns"},
             {"name,x,y\na,1,2\n", "no columns for the pixel"},
             {"pixel,line,x,y\n1,2,nan,4\n", "in line 2, column 5: \"nan\""},
             {"{\n \"type\": ]}", "in line 2, column 10: this is not valid JSON"},
             {"{\"type\":\"FeatureCollection\",\"features\":[{\"geometry\":3}]}", "feature 1 is not a point"},
             {"\n -gcp 1 2 3 x", "in line 2, column 2: -gcp wants"},
             {"<PAMDataset>\n <GCPList>\n  <GCP Pixel=\"1\"/></GCPList></PAMDataset>",
              "in line 3, column 3: the GCP has no number Line"},
             {"[1e999]", "out of range"},
             {"<VRTDataset/>", "no GCPList"},
             {"", "no control points"},
         }) {
        const std::string path = folder.Write("points.txt", text);
        const Thrown thrown = WhatIsThrown([&] { BControlPointFile::Read(BString(path)); });
        EXPECT_EQ(thrown.type, "BGeoReferenceInvalidReferenceFileException") << text;
        EXPECT_NE(thrown.detail.find(words), std::string::npos) << thrown.detail;
        EXPECT_NE(thrown.detail.find(path), std::string::npos) << thrown.detail;
    }
    EXPECT_EQ(WhatIsThrown([&] { BControlPointFile::Read(BString(folder / "none.csv")); }).type,
              "BFileNotFoundException");
    EXPECT_EQ(WhatIsThrown([&] { BControlPointFile().Write(BString(folder / "a.xyz")); }).type,
              "BUnsupportedFileTypeException");
    EXPECT_EQ(WhatIsThrown([&] { BControlPointFile().Write(BString("/nowhere/a.csv")); }).type,
              "BGeoReferenceWriteException");
}

}  // namespace
