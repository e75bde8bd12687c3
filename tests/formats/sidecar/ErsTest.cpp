// ERS headers through the entry point, by name and by type.

#include <Tellurion/BIdentifier.h>
#include <Tellurion/Numbers.h>

#include "Outcomes.h"

#include <cmath>
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
std::string With(const std::string& line) {
    return Header(kRawSpace, kSize + kPlace + line + "\n");
}

const ReadTable kReads(kErs, ".ers", "BRefERS::Read");

TEST(Ers, IsReadByNameAndByType) {
    const std::string info = kSize + kPlace, good = Header(kRawSpace, info);
    const std::string spaced = "Xdimension=0.5\nYdimension \t =0.25\nEastings   =   100\nNorthings= 200\n";
    constexpr Holds kPlaced{0, true};
    constexpr Ends kNoPosition{kNoReference, kInvalidTransform, kInvalidTransform};
    constexpr Ends kNoSize{kNoReference, kInvalidFile, kInvalidFile};
    kReads.Ends("windows_line_ends", std::regex_replace(good, std::regex("\n"), "\r\n"), kTaken, kPlaced);
    kReads.Ends("other_blanks", Header("", spaced), kTaken, kPlaced);
    kReads.Ends("unknown_names", Header("Datum = \"NOWHERE\"\n", info), kNoSystem, kPlaced);
    kReads.Ends("no_end", info, kRefused);
    kReads.Ends("no_northings", Header(kRawSpace, kSize + "Eastings = 1\n"), kNoPosition);
    kReads.Ends("position_behind_the_end", Header(kRawSpace, kSize) + kPlace, kTaken, kPlaced);
    kReads.Ends("bad_tag_behind_the_end", good + "NrOfLines = many\n", kByNameAlone, kPlaced);
    kReads.Ends("cell_x_inside", With("\t\tRegistrationCellX\t= 0"), kRefused);
    kReads.Ends("cell_x_behind_the_end", good + "RegistrationCellX\t= 0\n", kTaken, kPlaced);
    kReads.Ends("cell_y_without_number", With("RegistrationCellY\t= x"), kRefused);
    kReads.Ends("name_tag_without_a_name", Header("\t\tDatum\t=\n", info), kByNameAlone, kPlaced);
    kReads.Ends("no_size_in_x", Sized("0", "1"), kNoSize);
    kReads.Ends("no_size_in_y", Sized("1", "-0"), kNoSize);
    kReads.Ends("size_is_not_a_number", Sized("1", "nan"), {kNoReference, "", kInvalidTransform});
    kReads.Ends("count_beyond_32_bits", With("NrOfLines = 99999999999"), kTaken, kPlaced);
    kReads.Ends("ten_megabytes_in_a_line", With(std::string(10 << 20, 'x')), kTaken, kPlaced);
    kReads.Ends("quote_without_end", Header("Datum = \"RAW\n", info), kTaken, kPlaced);
    kReads.Ends("empty", "", kRefused);
    const Six place = {0.5, 0, 100, 0, -0.25, 200};
    const auto in = [&](const char* space, const char* code) {
        kReads.Places(space, Header(space, info), place, code);
    };
    in("Datum = \"NAD83\"\nProjection = \"GEODETIC\"\n", "EPSG:4269");
    in("Datum = \"NAD27\"\nProjection = \"RAW\"\n", "EPSG:4267");
    in("Datum = \"WGS84\"\nProjection = \"WGS84\"\n", "EPSG:4326");
    in("Datum = WGS84\nProjection = GEODETIC\n", "EPSG:4326");
    in("Datum = \" WGS84 \"\n", "EPSG:4326");
    in("Datum = \"NAD27\"\nDatum = \"WGS84\"\n", "EPSG:4326");
    kReads.Places("sign_of_y_means_nothing", Sized("0.5", "-0.25"), place);
    kReads.Places("cell_moves_the_corner", With("RegistrationCellY = 4"), {0.5, 0, 100, 0, -0.25, 201});
}

TEST(Ers, ReadFailuresStateWhatAndWhere) {
    const auto lacks = [](const std::string& tag) { return "Could not read the \"" + tag + "\" tag."; };
    for (const char* tag : {"Xdimension", "Ydimension", "NrOfLines", "NrOfCellsPerLine", "Eastings",
                            "Northings", "Datum", "Projection"})
        kReads.Fails(Header("", std::string("\t") + tag + "\t= \n"), kInvalidFile, lacks(tag));
    kReads.Fails("Datum =\nProjection =\nEastings = x\n", kInvalidFile, lacks("Datum"));
    kReads.Fails(kSize, kInvalidFile, lacks("RasterInfo End"));
    kReads.Fails(Header("", kSize), kInvalidTransform,
                 "Missing one or more of the required parameters needed to generate a transform.");
    kReads.Fails(Header("Datum = \"NOWHERE\"\n", kSize + kPlace), kInvalidSystem,
                 "Failed to get the coordinate system.");
    kReads.Fails(Sized("0", "1"), kInvalidFile,
                 "File <%> is an invalid ERS file.  XDimension and / or YDimention is zero",
                 {"BRefERS::Read Failure XDimension and/or YDimention is zero!"});
    const volatile double infinite = HUGE_VAL;
    const std::string none = std::signbit(infinite * 0.0) ? "-nan" : "nan";  // as the processor makes it
    kReads.Fails(Sized("inf", "1"), kInvalidTransform,
                 ("Failed creating Affine(inf 0.000000 " + none + " 0.000000 -1.000000 200.000000)").c_str());
}

/// A header with its stamp, which no test can know, replaced by "STAMP".
std::string WithoutStamp(const std::string& header) {
    const std::regex stamp(
        "(\tLastUpdated\t= )(Sun|Mon|Tue|Wed|Thu|Fri|Sat) [A-Z][a-z]{2} [ 0-3][0-9] [0-9:]{8} GMT "
        "[0-9]{4}\n");
    return std::regex_replace(header, stamp, "$1STAMP\n");
}

/// The whole header of a raster of 200 by 100.
std::string Expected(const std::string& name, const std::string& datum, const std::string& projection) {
    return "DatasetHeader Begin\n\tVersion\t\t= \"6.0\"\n\tName\t\t= \"" + name +
           "\"\n\tLastUpdated\t= STAMP\n\tDataFile\t= \"image.tif\"\n\tDataSetType\t= Translated\n"
           "\tDataType\t= Raster\n\tByteOrder\t= LSBFirst\n\tCoordinateSpace Begin\n\t\tDatum\t\t= \"" +
           datum + "\"\n\t\tProjection\t= \"" + projection +
           "\"\n\t\tCoordinateType\t= EN\n\t\tRotation\t= 0:0:0.0\n\tCoordinateSpace End\n"
           "\tRasterInfo Begin\n\t\tCellType\t= Unsigned8BitInteger\n\t\tCellInfo Begin\n"
           "\t\t\tXdimension\t= 0.250000000000000000\n\t\t\tYdimension\t= 0.500000000000000000\n"
           "\t\tCellInfo End\n\t\tNrOfLines\t= 100\n\t\tNrOfCellsPerLine\t= 200\n"
           "\t\tRegistrationCoord Begin\n\t\t\tEastings\t= 1234.500000000000\n"
           "\t\t\tNorthings\t= 99.125000000000\n\t\tRegistrationCoord End\n\t\tNrOfBands\t= 3\n"
           "\t\tBandId Begin\n\t\t\tValue\t\t= \"Red\"\n\t\tBandId End\n\t\tBandId Begin\n"
           "\t\t\tValue\t\t= \"Green\"\n\t\tBandId End\n\t\tBandId Begin\n\t\t\tValue\t\t= \"Blue\"\n"
           "\t\tBandId End\n\t\tRegionInfo Begin\n\t\t\tType\t\t= Polygon\n\t\t\tRegionName\t= \"All\"\n"
           "\t\t\tSubRegion\t= {\n\t\t\t\t0\t0\n\t\t\t\t0\t200\n\t\t\t\t100\t100\n\t\t\t\t100\t0\n\t\t\t}\n"
           "\t\tRegionInfo End\n\tRasterInfo End\nDatasetHeader End\n";
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

TEST(Ers, WritesTheWholeHeader) {
    const TempFolder folder;
    BGeoReference reference = References::WithAffine(0.25, 5e-8, 1234.5, -5e-8, -0.5, 99.125);
    const auto expect = [&](const char* names_by_name, const char* datum, const char* names_by_type) {
        EXPECT_EQ(WithoutStamp(Written(folder / "name.ers", reference, "/a/b/image.tif")),
                  Expected("name.ers", datum, names_by_name));
        EXPECT_EQ(WithoutStamp(Written(kErs, folder / "type.ers", reference, 0)),
                  Expected("type.ers", names_by_type == std::string("RAW") ? "RAW" : "WGS84", names_by_type));
    };
    expect("RAW", "RAW", "RAW");
    // A system with a name of its own, here the datum's, is written by type alone.
    References::SetSystem(reference, "4326");
    expect("RAW", "RAW", "WGS84");
    reference.SetCoordSys(BSharedPtr<BCoordSys>(new NamedSystem(*reference.CoordSys)));
    expect("RAW", "RAW", "OWNNAME");
    // One on another datum than its projection's own is written by name alone.
    References::SetSystem(reference, "26711");
    expect("NUTM11", "NAD27", "RAW");
    // Asked for codes, it is written by its code by type.
    Tellurion::BParamList codes;
    codes.SetInteger(BMapAnchor::kValErsCodes, 1);
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"26711", "NUTM11", "NAD27"},
        {"2056", "RAW", "RAW"},
        {"2089", "NUTM38", "RAW"},  // its datum is WGS 84 but for the name
        {"2012", "RAW", "RAW"},     // its ellipsoid is not the one that the name stands for
        {"3405", "RAW", "RAW"}};    // its datum is 200 m from the one that the name stands for
    for (const auto& [epsg, projection, datum] : cases) {
        References::SetSystem(reference, epsg);
        const std::string file = folder / "codes.ers";
        BMapAnchor::Save(BString(file), reference, 200, 100, "image.tif", &codes);
        EXPECT_EQ(WithoutStamp(TempFolder::Slurp(file)), Expected("codes.ers", datum, projection));
        BMapAnchor::Save(kErs, BString(file), reference, 200, 100, "image.tif", 0, &codes);
        const std::string code = std::string("EPSG:") + epsg;
        EXPECT_EQ(WithoutStamp(TempFolder::Slurp(file)), Expected("codes.ers", code, code));
    }
    EXPECT_NE(Written(folder / "name.ers", reference, "a\nRasterInfo End").find("= \"a RasterInfo End\"\n"),
              std::string::npos);
    // No transform: zeros.
    EXPECT_NE(Written(folder / "name.ers", BGeoReference()).find("Eastings\t= 0.000000000000\n"),
              std::string::npos);
}

// Cell sizes are metres even where positions are feet; the reader mirrors it.
TEST(Ers, WritesMetresForFeetInTheCellSizeAlone) {
    const TempFolder folder;
    const std::string text =
        Written(folder / "map.ers", References::Of("2277", {3937, 0, 3000000, 0, -7874, 10100000}));
    const auto number = [&](const std::string& tag) {
        return ParseDouble(text.substr(text.find(tag) + tag.size()));
    };
    EXPECT_NEAR(number("Xdimension\t= "), 1200, 1e-9);
    EXPECT_NEAR(number("Ydimension\t= "), 2400, 1e-9);
    EXPECT_EQ(number("Eastings\t= "), 3000000);
}

TEST(Ers, WriteFailuresStateTheReason) {
    const TempFolder folder;
    const LogCapture log;
    const std::string file = folder.Write("map.ers", "older"), write = "BRefERS::Write";
    const std::string cannot = "Can't write ERS file <" + file + ">, ";
    for (const Six& t : {Six{1, 2e-7, 0, 0, -1, 0}, {1, 0, 0, -2e-7, -1, 0}})
        ExpectThrown(Roads::Save(file, References::Of("4326", t)), kWriteFailure, write,
                     "ERS referencing format does not support rotation.");
    EXPECT_EQ(TempFolder::Slurp(file), "older");
    ExpectThrown(
        Roads::Save(kErs, file, References::WithAffine(1, 0.5, 0, 0.25, -1, 0)), kInvalidTransform, write,
        cannot + "ERS referencing format does not support rotation in X (0.500000) or Y (0.250000).");
    BGeoReference odd = References::WithAffine(1, 0, 0, 0, -1, 0);
    const auto strict = [&] { return Roads::Save(kErs, file, odd, BMapAnchor::kStrictCoordSys); };
    odd.SetCoordSys(BSharedPtr<BCoordSys>(BCoordSys::FromWKT(
        "GEOGCS[\"odd\",DATUM[\"odd\",SPHEROID[\"odd\",6300000,300]],PRIMEM[\"Greenwich\",0],"
        "UNIT[\"degree\",0.0174532925199433]]")));
    ExpectThrown(strict(), kInvalidSystem, write, cannot + "Can't find an ERMapper code for Projection odd.");
    odd.SetCoordSys(BSharedPtr<BCoordSys>(new NamedSystem(*odd.CoordSys)));
    ExpectThrown(strict(), kInvalidSystem, write, cannot + "Can't find an ERMapper code for Datum odd.");
    EXPECT_NE(Written(kErs, file, odd, 0).find("\t\tDatum\t\t= \"RAW\"\n\t\tProjection\t= \"OWNNAME\"\n"),
              std::string::npos);
}

}  // namespace
}  // namespace MapAnchor
