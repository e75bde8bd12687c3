// ADRG: the general information file beside an image, and an overview file by itself.

#include "raster/AdrgInfo.h"
#include "raster/BRefADRG.h"

#include "ChartFiles.h"
#include "Reading.h"

namespace MapAnchor {
namespace {

using namespace Tellurion;

const AdrgValues kFirst;
const AdrgValues kSecond = {"00360000", "00720000", "+0000000.00", "-100000.00"};
const Six kSecondTerms = {0.001, 0, 0.0005, 0, -0.0005, -10 - 0.00025};
constexpr double kLongitude = -(45.50 / 3600.0 + 30 / 60.0 + 12);
constexpr double kLatitude = 0.50 / 3600.0 + 0 / 60.0 + 48;

std::string Information() {
    return AdrgLeader() + kFirst.Overview("TPSGI001") + kFirst.Record("TPSGI001") +
           kSecond.Record("TPSGI002");
}

TEST(Adrg, ReadsTheRecordOfItsImageInTheFileBesideIt) {
    const TempFolder folder;
    const LogCapture log;
    const std::string beside = folder.Write("TPSGI001.gen", Information());
    const NamedRead first = ReadByName(folder.Write("TPSGI001.IMG", AdrgLeader(true)));
    EXPECT_EQ(first.thrown.type, "");
    EXPECT_EQ(first.kind, "ADRG");
    EXPECT_EQ(first.used, beside);
    EXPECT_EQ(CodeOf(first.reference), "EPSG:4326");
    const double dx = 360.0 / 1296000;
    const double dy = 360.0 / 648000;
    EXPECT_EQ(References::Terms(first.reference),
              (Six{dx, 0, kLongitude + dx * 0.5, 0, -dy, kLatitude - dy * 0.5}));
    // The name's last digit gives way to a 1 whatever it is; case does not matter to the record.
    const NamedRead second = ReadByName(folder.Write("tpsgi002.img", AdrgLeader(true)));
    EXPECT_EQ(second.thrown.type, kUnsupported);  // tpsgi001.gen: another file
    folder.Write("tpsgi001.gen", Information());
    EXPECT_EQ(References::Terms(ReadByName(folder / "tpsgi002.img").reference), kSecondTerms);
}

TEST(Adrg, TakesTheNameInCapitalsWhereOnlyThatExists) {
    const TempFolder folder;
    const std::string beside = folder.Write("TPSGI001.GEN", Information());
    for (const std::string& name : {folder.Write("TPSGI002.IMG", AdrgLeader(true)), beside}) {
        const NamedRead read = ReadByName(name);
        EXPECT_EQ(read.kind, "ADRG");
        EXPECT_EQ(read.used, beside);
    }
    EXPECT_EQ(References::Terms(ReadByName(folder / "TPSGI002.IMG").reference)[0], 0.001);
}

TEST(Adrg, AnswersWithTheFileItRead) {
    const TempFolder folder;
    BGeoReference reference;
    BString used(folder.Write("given", kFirst.Overview("ANYIMAGE")));
    // Too short to derive a name from: the given file is read, by the layout of the name's extension.
    ASSERT_TRUE(BRefADRG::Read(BString("a.OVR"), reference, used));
    EXPECT_EQ(used, BString(folder / "given"));
    EXPECT_EQ(References::Terms(reference)[0], 360.0 / 1296000);
    EXPECT_FALSE(BRefADRG::Read(BString("a.IMG"), reference, used));
    // One character more, and the derived name is what was looked for.
    EXPECT_FALSE(BRefADRG::Read(BString(folder / "TPSGI009.IMG"), reference, used));
    EXPECT_EQ(used, BString(folder / "TPSGI001.gen"));
}

TEST(Adrg, ByTypeReadsTheFileItself) {
    const TempFolder folder;
    for (const std::string& file : {folder.Write("TPSGI002.gen", Information()),
                                    folder.Write("over.Ovr", AdrgLeader() + kSecond.Overview("ANYIMAGE"))}) {
        BGeoReference reference;
        EXPECT_EQ(ReadTyped<BRefADRG>(file, Roads::kStrict, reference).type, "");
        EXPECT_EQ(References::Terms(reference), kSecondTerms);
        EXPECT_EQ(CodeOf(reference), "EPSG:4326");
    }
}

TEST(Adrg, FaultsOfTheFile) {
    const std::string record = kFirst.Record("TPSGI001");
    const char* const no_tag = "Missing ADRG tag.";
    const char* const no_values = "Could not read the required values (such as Asz Bs).";
    const struct {
        const char* name;
        std::string content;
        std::string detail;  ///< empty: it reads
    } cases[] = {
        {"empty", "", no_tag},
        {"no_tag", AdrgLeader(), no_tag},
        {"tag_in_lower_case", "adrgTPSGI001" + std::string(200, '0'), no_tag},
        {"tags_behind_a_nul", std::string("x\0", 2) + Information(), no_tag},
        {"first_tag_is_the_header's", record, no_values},
        {"another_image", "ADRG" + kFirst.Record("TPSGI009"), no_values},
        {"record_cut_in_its_values", "ADRG" + record.substr(0, record.size() - 2), no_values},
        {"name_cut", "ADRGADRGTPSGI00", no_values},
        {"values_far_behind", "ADRG" + std::string(50000, ' ') + record, ""},
        {"values_behind_the_limit", "ADRG" + std::string(kLongestAdrgInfo, ' ') + record, no_values},
    };
    const TempFolder folder;
    const LogCapture log;
    for (const auto& test : cases) {
        const std::string file = folder.Write("TPSGI001.gen", test.content);
        BGeoReference reference;
        BString used;
        EXPECT_EQ(BRefADRG::Read(BString(file), reference, used), test.detail.empty()) << test.name;
        EXPECT_EQ(reference.HasCoordSys(), test.detail.empty()) << test.name;
        const Thrown fault = {kInvalidFile, "BRefADRG::Read", test.detail};
        ExpectThrown(ReadTyped<BRefADRG>(file, 0, reference), test.detail.empty() ? Thrown() : fault);
    }
}

TEST(Adrg, ACountOfZeroMakesNoAffine) {
    const TempFolder folder;
    AdrgValues zero = kFirst;
    zero.columns = "00000000";
    // The row's size without its sign: that is how the message reads.
    ExpectSystemAlone<BRefADRG>(folder.Write("TPSGI001.gen", AdrgLeader() + "ADRG" + zero.Record("TPSGI001")),
                                {kInvalidTransform, "BRefADRG::Read",
                                 "Failed creating Affine(inf 0.000000 inf 0.000000 0.000556 47.999861)"});
}

TEST(Adrg, AnglesOfAllForms) {
    const struct {
        const char* text;
        double degrees;
    } cases[] = {
        {"+0123045.67", 45.67 / 3600.0 + 30 / 60.0 + 12},
        {"-0123045.67", -(45.67 / 3600.0 + 30 / 60.0 + 12)},
        {"+123045.67", 45.67 / 3600.0 + 30 / 60.0 + 12},
        {"9123045.67", 45.67 / 3600.0 + 30 / 60.0 + 12},  // taken for a sign
        {"-0000000.50", -0.5 / 3600.0},
        {"+xx0000.00", 0.0},
        {"+5.0", 0.0},
    };
    for (const auto& test : cases)
        EXPECT_EQ(ParseAdrgAngle(test.text), test.degrees) << test.text;
}

TEST(Adrg, IsReadOnly) {
    ExpectReadOnly<BRefADRG>("ADRG");
}

}  // namespace
}  // namespace MapAnchor
