// ERS headers through the front door: the road by name and the road by type.

#include <Tellurion/BIdentifier.h>

#include "Outcomes.h"

#include <regex>

namespace MapAnchor {
namespace {

using namespace Tellurion;

constexpr EReferenceType kErs = EReferenceType::ERS;

/// A header with these lines in its two blocks.
std::string Header(const std::string& space, const std::string& info) {
    return "DatasetHeader Begin\n\tName\t= \"map.ers\"\n\tCoordinateSpace Begin\n" + space +
           "\tCoordinateSpace End\n\tRasterInfo Begin\n" + info + "\tRasterInfo End\nDatasetHeader End\n";
}

const std::string kRawSpace = "\t\tDatum\t\t= \"RAW\"\n\t\tProjection\t= \"RAW\"\n";
const std::string kSize = "\t\t\tXdimension\t= 0.5\n\t\t\tYdimension\t= 0.25\n";
const std::string kPlace = "\t\t\tEastings\t= 100\n\t\t\tNorthings\t= 200\n";

// Which contents the roads take, and how they end.
TEST(Ers, TheRoadsTakeWhatTheyShould) {
    const std::string info = kSize + kPlace;
    const std::string good = Header(kRawSpace, info);
    const auto with = [&](const std::string& line) { return Header(kRawSpace, info + line + "\n"); };
    const auto sized = [](const std::string& x, const std::string& y) {
        return Header(kRawSpace, "Xdimension = " + x + "\nYdimension = " + y + "\n" + kPlace);
    };
    constexpr Holds kPlaced{0, true};
    constexpr Ends kNoPosition{kNoReference, kInvalidTransform, kInvalidTransform};
    constexpr Ends kByNameAlone{"", kInvalidFile, kInvalidFile};
    constexpr Ends kNoSize{kNoReference, kInvalidFile, kInvalidFile};
    constexpr Ends kNoAffine{kNoReference, "", kInvalidTransform};
    ExpectRoads(kErs, ".ers",
                {{"plain", good, kTaken, kPlaced},
                 {"no_names", Header("", info), kTaken, kPlaced},
                 {"windows_line_ends", std::regex_replace(good, std::regex("\n"), "\r\n"), kTaken, kPlaced},
                 {"other_blanks",
                  Header("", "Xdimension=0.5\nYdimension \t =0.25\nEastings   =   100\nNorthings= 200\n"),
                  kTaken, kPlaced},
                 {"unknown_names", Header("Datum = \"NOWHERE\"\nProjection = \"NOTHING\"\n", info), kNoSystem,
                  kPlaced},
                 {"no_end", "Xdimension = 1\nYdimension = 1\nEastings = 1\nNorthings = 1\n", kRefused},
                 {"no_position", Header(kRawSpace, kSize), kNoPosition},
                 {"no_northings", Header(kRawSpace, kSize + "Eastings = 1\n"), kNoPosition},
                 {"position_behind_the_end", Header(kRawSpace, kSize) + kPlace, kTaken, kPlaced},
                 {"bad_tag_inside", with("NrOfLines = many"), kRefused},
                 {"bad_tag_behind_the_end", good + "NrOfLines = many\n", kByNameAlone, kPlaced},
                 {"cell_x_inside", with("\t\tRegistrationCellX\t= 0"), kRefused},
                 {"cell_x_behind_the_end", good + "RegistrationCellX\t= 0\n", kTaken, kPlaced},
                 {"cell_y_inside", with("RegistrationCellY\t= 0"), kTaken, kPlaced},
                 {"cell_y_without_number", with("RegistrationCellY\t= x"), kRefused},
                 {"name_tag_without_a_name", Header("\t\tDatum\t=\n", info), kByNameAlone, kPlaced},
                 {"no_size_in_x", sized("0", "1"), kNoSize},
                 {"no_size_in_y", sized("1", "-0"), kNoSize},
                 {"size_is_no_number", sized("1", "nan"), kNoAffine},
                 {"size_is_infinite", sized("inf", "1"), kNoAffine},
                 {"count_beyond_32_bits", with("NrOfLines = 99999999999"), kTaken, kPlaced},
                 {"ten_megabytes_in_a_line", with(std::string(10 << 20, 'x')), kTaken, kPlaced},
                 {"quote_without_end", Header("Datum = \"RAW\nProjection = \"RAW\n", info), kTaken, kPlaced},
                 {"empty", "", kRefused}});
}

TEST(Ers, PlacesTheCornerAndMindsTheSignOfYAndTheCell) {
    const TempFolder folder;
    BGeoReference reference;
    for (const char* y : {"0.25", "-0.25"}) {
        const std::string info = "Xdimension\t= 0.5\nYdimension\t= " + std::string(y) + "\n" + kPlace;
        ASSERT_EQ(Roads::Read(folder.Write("map.ers", Header("", info)), reference).type, "");
        EXPECT_EQ(References::Terms(reference), (Six{0.5, 0, 100, 0, -0.25, 200}));
    }
    const std::string info = kSize + kPlace + "RegistrationCellY\t= 4\n";
    ASSERT_EQ(Roads::Read(folder.Write("map.ers", Header("", info)), reference).type, "");
    EXPECT_EQ(References::Terms(reference), (Six{0.5, 0, 100, 0, -0.25, 201}));
}

struct SystemCase {
    const char* name;
    std::string space;
    std::string epsg;
};

TEST(Ers, SystemsByTheirNames) {
    const SystemCase cases[] = {
        {"datum_alone", "\t\tDatum\t\t= \"WGS84\"\n", "EPSG:4326"},
        {"geodetic", "Datum = \"NAD83\"\nProjection = \"GEODETIC\"\n", "EPSG:4269"},
        {"projection_raw", "Datum = \"NAD27\"\nProjection = \"RAW\"\n", "EPSG:4267"},
        {"projection_equals_datum", "Datum = \"WGS84\"\nProjection = \"WGS84\"\n", "EPSG:4326"},
        {"bare_words", "Datum = WGS84\nProjection = GEODETIC\n", "EPSG:4326"},
        {"blanks_in_quotes", "Datum = \" WGS84 \"\n", "EPSG:4326"},
        {"both_raw", kRawSpace, "none"},
        {"the_last_counts", "Datum = \"NAD27\"\nDatum = \"WGS84\"\n", "EPSG:4326"},
    };
    const TempFolder folder;
    for (const SystemCase& test : cases) {
        SCOPED_TRACE(test.name);
        const std::string file = folder.Write("map.ers", Header(test.space, kSize + kPlace));
        BGeoReference by_name, by_type;
        EXPECT_EQ(Roads::Read(file, by_name).type, "");
        EXPECT_EQ(Roads::Read(kErs, file, by_type, Roads::kStrict).type, "");
        for (const BGeoReference* reference : {&by_name, &by_type})
            EXPECT_EQ(CodeOf(*reference), test.epsg);
    }
}

TEST(Ers, ReadFailuresSayWhatAndWhere) {
    const auto missing = [](const std::string& tag) {
        return Thrown{kInvalidFile, "BRefERS::Read", "Could not read the \"" + tag + "\" tag."};
    };
    std::vector<FailureCase> cases = {
        {"the_first_tag_counts", "Datum =\nEastings = x\n", missing("Datum")},
        {"no_end", kSize, missing("RasterInfo End")},
        {"no_position",
         Header("", kSize),
         {kInvalidTransform, "BRefERS::Read",
          "Missing one or more of the required parameters needed to generate a transform."}},
        {"unknown_datum",
         Header("Datum = \"NOWHERE\"\n", kSize + kPlace),
         {kInvalidSystem, "BRefERS::Read", "Failed to get the coordinate system."}},
        {"zero",
         Header("", "Xdimension = 0\nYdimension = 1\n" + kPlace),
         {kInvalidFile, "BRefERS::Read",
          "File <%> is an invalid ERS file.  XDimension and / or YDimention is zero"},
         {"BRefERS::Read Failure XDimension and/or YDimention is zero!"}},
        {"infinite",
         Header("", "Xdimension = inf\nYdimension = 1\n" + kPlace),
         {kInvalidTransform, "BRefERS::Read",
          "Failed creating Affine(inf 0.000000 -nan 0.000000 -1.000000 200.000000)"}}};
    for (const char* tag : {"Xdimension", "Ydimension", "NrOfLines", "NrOfCellsPerLine", "Eastings",
                            "Northings", "Datum", "Projection"})
        cases.push_back({tag, Header("", std::string("\t") + tag + "\t= \n"), missing(tag)});
    ExpectFailures(kErs, ".ers", cases);
}

/// The header with its stamp, which no test can know, replaced by "STAMP".
std::string SlurpHeader(const std::string& path) {
    const std::regex stamp(
        "(\tLastUpdated\t= )(Sun|Mon|Tue|Wed|Thu|Fri|Sat) [A-Z][a-z]{2} [ 0-3][0-9] [0-9:]{8} GMT "
        "[0-9]{4}\n");
    return std::regex_replace(TempFolder::Slurp(path), stamp, "$1STAMP\n");
}

std::string Expected(const std::string& name, const std::string& datum, const std::string& projection,
                     const std::string& x, const std::string& y, const std::string& east,
                     const std::string& north) {
    return "DatasetHeader Begin\n\tVersion\t\t= \"6.0\"\n\tName\t\t= \"" + name +
           "\"\n\tLastUpdated\t= STAMP\n\tDataFile\t= \"image.tif\"\n\tDataSetType\t= Translated\n"
           "\tDataType\t= Raster\n\tByteOrder\t= LSBFirst\n\tCoordinateSpace Begin\n\t\tDatum\t\t= \"" +
           datum + "\"\n\t\tProjection\t= \"" + projection +
           "\"\n\t\tCoordinateType\t= EN\n\t\tRotation\t= 0:0:0.0\n\tCoordinateSpace End\n"
           "\tRasterInfo Begin\n\t\tCellType\t= Unsigned8BitInteger\n\t\tCellInfo "
           "Begin\n\t\t\tXdimension\t= " +
           x + "\n\t\t\tYdimension\t= " + y +
           "\n\t\tCellInfo End\n\t\tNrOfLines\t= 100\n\t\tNrOfCellsPerLine\t= 200\n"
           "\t\tRegistrationCoord Begin\n\t\t\tEastings\t= " +
           east + "\n\t\t\tNorthings\t= " + north +
           "\n\t\tRegistrationCoord End\n\t\tNrOfBands\t= 3\n"
           "\t\tBandId Begin\n\t\t\tValue\t\t= \"Red\"\n\t\tBandId End\n"
           "\t\tBandId Begin\n\t\t\tValue\t\t= \"Green\"\n\t\tBandId End\n"
           "\t\tBandId Begin\n\t\t\tValue\t\t= \"Blue\"\n\t\tBandId End\n"
           "\t\tRegionInfo Begin\n\t\t\tType\t\t= Polygon\n\t\t\tRegionName\t= \"All\"\n\t\t\tSubRegion\t= "
           "{\n"
           "\t\t\t\t0\t0\n\t\t\t\t0\t200\n\t\t\t\t100\t100\n\t\t\t\t100\t0\n\t\t\t}\n"
           "\t\tRegionInfo End\n\tRasterInfo End\nDatasetHeader End\n";
}

TEST(Ers, WritesTheWholeHeader) {
    const TempFolder folder;
    BGeoReference reference = References::WithAffine(0.25, 5e-8, 1234.5, -5e-8, -0.5, 99.125);
    const auto expected = [](const char* name, const char* datum, const char* projection) {
        return Expected(name, datum, projection, "0.250000000000000000", "0.500000000000000000",
                        "1234.500000000000", "99.125000000000");
    };
    EXPECT_EQ(Roads::Save(folder / "name.ers", reference, "/a/b/image.tif").type, "");
    EXPECT_EQ(SlurpHeader(folder / "name.ers"), expected("name.ers", "RAW", "RAW"));
    EXPECT_EQ(Roads::Save(kErs, folder / "type.ers", reference, Roads::kStrict).type, "");
    EXPECT_EQ(SlurpHeader(folder / "type.ers"), expected("type.ers", "RAW", "RAW"));

    // A system with a name of its own, here the datum's, goes without by name.
    References::SetSystem(reference, "4326");
    EXPECT_EQ(Roads::Save(folder / "name.ers", reference).type, "");
    EXPECT_EQ(SlurpHeader(folder / "name.ers"), expected("name.ers", "RAW", "RAW"));
    EXPECT_EQ(Roads::Save(kErs, folder / "type.ers", reference, Roads::kStrict).type, "");
    EXPECT_EQ(SlurpHeader(folder / "type.ers"), expected("type.ers", "WGS84", "WGS84"));
    // One on another datum than its projection's own is told by both, by name alone.
    References::SetSystem(reference, "26711");
    EXPECT_EQ(Roads::Save(folder / "name.ers", reference).type, "");
    EXPECT_EQ(SlurpHeader(folder / "name.ers"), expected("name.ers", "NAD27", "NUTM11"));

    // No transform: zeros.
    EXPECT_EQ(Roads::Save(folder / "none.ers", BGeoReference()).type, "");
    const std::string zero = "0.000000000000";
    EXPECT_EQ(SlurpHeader(folder / "none.ers"),
              Expected("none.ers", "RAW", "RAW", zero + "000000", zero + "000000", zero, zero));
}

// Cell sizes are metres even where positions are feet; the reader mirrors it.
TEST(Ers, FeetAreWrittenAsMetresInTheCellSizeAlone) {
    const TempFolder folder;
    BGeoReference reference = References::WithAffine(3937, 0, 3000000, 0, -7874, 10100000);
    References::SetSystem(reference, "2277");  // US survey feet
    EXPECT_EQ(Roads::Save(folder / "map.ers", reference).type, "");
    const std::string text = TempFolder::Slurp(folder / "map.ers");
    std::smatch x, y;
    ASSERT_TRUE(std::regex_search(text, x, std::regex("Xdimension\t= ([0-9.]+)")));
    ASSERT_TRUE(std::regex_search(text, y, std::regex("Ydimension\t= ([0-9.]+)")));
    EXPECT_NEAR(std::stod(x[1]), 1200, 1e-9);
    EXPECT_NEAR(std::stod(y[1]), 2400, 1e-9);
    EXPECT_NE(text.find("Eastings\t= 3000000.000000000000\n"), std::string::npos);
}

/// A system that has an ER Mapper name of its own.
class NamedSystem : public BCoordSys {
public:
    explicit NamedSystem(const BCoordSys& system) : BCoordSys(system) {}
    bool GetIdentifier(const BString& issuer, BIdentifier& out) const override {
        if (issuer != BString("ERMapper")) return BCoordSys::GetIdentifier(issuer, out);
        out = BIdentifier(issuer, "OWNNAME");
        return true;
    }
};

TEST(Ers, ANameOfItsOwnIsWrittenByTypeAlone) {
    const TempFolder folder;
    BGeoReference reference = References::WithAffine(1, 0, 0, 0, -1, 0);
    References::SetSystem(reference, "4326");
    reference.SetCoordSys(BSharedPtr<BCoordSys>(new NamedSystem(*reference.CoordSys)));
    EXPECT_EQ(Roads::Save(folder / "name.ers", reference).type, "");
    EXPECT_NE(TempFolder::Slurp(folder / "name.ers").find(kRawSpace), std::string::npos);
    EXPECT_EQ(Roads::Save(kErs, folder / "type.ers", reference, Roads::kStrict).type, "");
    EXPECT_NE(TempFolder::Slurp(folder / "type.ers")
                  .find("\t\tDatum\t\t= \"WGS84\"\n\t\tProjection\t= \"OWNNAME\"\n"),
              std::string::npos);
}

TEST(Ers, WhatCannotBeWrittenSaysSo) {
    const TempFolder folder;
    const LogCapture log;
    const std::string file = folder.Write("map.ers", "older");
    const std::string cannot = "Can't write ERS file <" + file + ">, ";
    for (const BGeoReference& rotated :
         {References::WithAffine(1, 2e-7, 0, 0, -1, 0), References::WithAffine(1, 0, 0, -2e-7, -1, 0)})
        ExpectThrown(Roads::Save(file, rotated),
                     {kWriteFailure, "BRefERS::Write", "ERS referencing format does not support rotation."});
    EXPECT_EQ(TempFolder::Slurp(file), "older");
    ExpectThrown(
        Roads::Save(kErs, file, References::WithAffine(1, 0.5, 0, 0.25, -1, 0)),
        {kInvalidTransform, "BRefERS::Write",
         cannot + "ERS referencing format does not support rotation in X (0.500000) or Y (0.250000)."});
    EXPECT_EQ(TempFolder::Slurp(file), "");

    BGeoReference odd = References::WithAffine(1, 0, 0, 0, -1, 0);
    odd.SetCoordSys(BSharedPtr<BCoordSys>(BCoordSys::FromWKT(
        "GEOGCS[\"odd\",DATUM[\"odd\",SPHEROID[\"odd\",6300000,300]],PRIMEM[\"Greenwich\",0],"
        "UNIT[\"degree\",0.0174532925199433]]")));
    ExpectThrown(
        Roads::Save(kErs, file, odd, BMapAnchor::kStrictCoordSys),
        {kInvalidSystem, "BRefERS::Write", cannot + "Can't find an ERMapper code for Projection odd."});
    odd.SetCoordSys(BSharedPtr<BCoordSys>(new NamedSystem(*odd.CoordSys)));
    ExpectThrown(Roads::Save(kErs, file, odd, BMapAnchor::kStrictCoordSys),
                 {kInvalidSystem, "BRefERS::Write", cannot + "Can't find an ERMapper code for Datum odd."});
    EXPECT_EQ(Roads::Save(kErs, file, odd).type, "");
    EXPECT_NE(TempFolder::Slurp(file).find("\t\tDatum\t\t= \"RAW\"\n\t\tProjection\t= \"OWNNAME\"\n"),
              std::string::npos);
}

}  // namespace
}  // namespace MapAnchor
