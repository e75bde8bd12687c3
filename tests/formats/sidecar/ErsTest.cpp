// ERS headers through the front door: the road by name and the road by type.

#include <Tellurion/BIdentifier.h>
#include <Tellurion/Numbers.h>

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

std::string Sized(const std::string& x, const std::string& y) {
    return Header(kRawSpace, "Xdimension = " + x + "\nYdimension = " + y + "\n" + kPlace);
}

// Which contents the roads take, and how they end.
TEST(Ers, TheRoadsTakeWhatTheyShould) {
    const std::string info = kSize + kPlace;
    const std::string good = Header(kRawSpace, info);
    const auto with = [&](const std::string& line) { return Header(kRawSpace, info + line + "\n"); };
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
                 {"no_size_in_x", Sized("0", "1"), kNoSize},
                 {"no_size_in_y", Sized("1", "-0"), kNoSize},
                 {"size_is_no_number", Sized("1", "nan"), kNoAffine},
                 {"size_is_infinite", Sized("inf", "1"), kNoAffine},
                 {"count_beyond_32_bits", with("NrOfLines = 99999999999"), kTaken, kPlaced},
                 {"ten_megabytes_in_a_line", with(std::string(10 << 20, 'x')), kTaken, kPlaced},
                 {"quote_without_end", Header("Datum = \"RAW\nProjection = \"RAW\n", info), kTaken, kPlaced},
                 {"empty", "", kRefused}});
}

TEST(Ers, PlacesTheCornerAndNamesTheSystem) {
    const Six place = {0.5, 0, 100, 0, -0.25, 200};
    const auto in = [&](const char* name, const std::string& space, const char* code = "none") {
        return PlaceCase{name, Header(space, kSize + kPlace), place, code};
    };
    ExpectPlaces(kErs, ".ers",
                 {in("datum_alone", "\t\tDatum\t\t= \"WGS84\"\n", "EPSG:4326"),
                  in("geodetic", "Datum = \"NAD83\"\nProjection = \"GEODETIC\"\n", "EPSG:4269"),
                  in("projection_raw", "Datum = \"NAD27\"\nProjection = \"RAW\"\n", "EPSG:4267"),
                  in("projection_equals_datum", "Datum = \"WGS84\"\nProjection = \"WGS84\"\n", "EPSG:4326"),
                  in("bare_words", "Datum = WGS84\nProjection = GEODETIC\n", "EPSG:4326"),
                  in("blanks_in_quotes", "Datum = \" WGS84 \"\n", "EPSG:4326"),
                  in("both_raw", kRawSpace),
                  in("the_last_counts", "Datum = \"NAD27\"\nDatum = \"WGS84\"\n", "EPSG:4326"),
                  {"sign_of_y_means_nothing", Sized("0.5", "-0.25"), place},
                  {"cell_moves_the_corner",
                   Header("", kSize + kPlace + "RegistrationCellY\t= 4\n"),
                   {0.5, 0, 100, 0, -0.25, 201}}});
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
         Sized("0", "1"),
         {kInvalidFile, "BRefERS::Read",
          "File <%> is an invalid ERS file.  XDimension and / or YDimention is zero"},
         {"BRefERS::Read Failure XDimension and/or YDimention is zero!"}},
        {"infinite",
         Sized("inf", "1"),
         {kInvalidTransform, "BRefERS::Read",
          "Failed creating Affine(inf 0.000000 -nan 0.000000 -1.000000 200.000000)"}}};
    for (const char* tag : {"Xdimension", "Ydimension", "NrOfLines", "NrOfCellsPerLine", "Eastings",
                            "Northings", "Datum", "Projection"})
        cases.push_back({tag, Header("", std::string("\t") + tag + "\t= \n"), missing(tag)});
    ExpectFailures(kErs, ".ers", cases);
}

/// A header with its stamp, which no test can know, replaced by "STAMP".
std::string WithoutStamp(const std::string& header) {
    const std::regex stamp(
        "(\tLastUpdated\t= )(Sun|Mon|Tue|Wed|Thu|Fri|Sat) [A-Z][a-z]{2} [ 0-3][0-9] [0-9:]{8} GMT "
        "[0-9]{4}\n");
    return std::regex_replace(header, stamp, "$1STAMP\n");
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
    const auto by_name = [&] {
        return WithoutStamp(Written(folder / "name.ers", reference, "/a/b/image.tif"));
    };
    const auto by_type = [&] { return WithoutStamp(Written(kErs, folder / "type.ers", reference)); };
    EXPECT_EQ(by_name(), expected("name.ers", "RAW", "RAW"));
    EXPECT_EQ(by_type(), expected("type.ers", "RAW", "RAW"));
    // A system with a name of its own, here the datum's, goes without by name.
    References::SetSystem(reference, "4326");
    EXPECT_EQ(by_name(), expected("name.ers", "RAW", "RAW"));
    EXPECT_EQ(by_type(), expected("type.ers", "WGS84", "WGS84"));
    // One on another datum than its projection's own is told by both, by name alone.
    References::SetSystem(reference, "26711");
    EXPECT_EQ(by_name(), expected("name.ers", "NAD27", "NUTM11"));
    // No transform: zeros.
    reference = BGeoReference();
    const std::string zero = "0.000000000000";
    EXPECT_EQ(by_name(), Expected("name.ers", "RAW", "RAW", zero + "000000", zero + "000000", zero, zero));
}

// Cell sizes are metres even where positions are feet; the reader mirrors it.
TEST(Ers, FeetAreWrittenAsMetresInTheCellSizeAlone) {
    const TempFolder folder;
    BGeoReference reference = References::WithAffine(3937, 0, 3000000, 0, -7874, 10100000);
    References::SetSystem(reference, "2277");  // US survey feet
    const std::string text = Written(folder / "map.ers", reference);
    std::smatch sizes;
    ASSERT_TRUE(
        std::regex_search(text, sizes, std::regex("Xdimension\t= ([0-9.]+)\n\t*Ydimension\t= ([0-9.]+)\n")));
    EXPECT_NEAR(Tellurion::ParseDouble(sizes[1].str()), 1200, 1e-9);
    EXPECT_NEAR(Tellurion::ParseDouble(sizes[2].str()), 2400, 1e-9);
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
    EXPECT_NE(Written(folder / "name.ers", reference).find(kRawSpace), std::string::npos);
    EXPECT_NE(Written(kErs, folder / "type.ers", reference)
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
    EXPECT_NE(Written(kErs, file, odd, 0).find("\t\tDatum\t\t= \"RAW\"\n\t\tProjection\t= \"OWNNAME\"\n"),
              std::string::npos);
}

}  // namespace
}  // namespace MapAnchor
