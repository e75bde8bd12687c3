// ADRG: the general information file beside an image, and an overview file by itself.

#include "raster/adrg/AdrgInfo.h"
#include "raster/adrg/BRefADRG.h"

#include "ChartFiles.h"
#include "Reading.h"

namespace MapAnchor {
namespace {

using namespace Tellurion;

const AdrgValues kFirst;
const AdrgValues kSecond = {"00360000", "00720000", "+0000000.00", "-100000.00"};
const Six kSecondTerms = {0.001, 0, 0.0005, 0, -0.0005, -10 - 0.00025};
constexpr double kDx = 360.0 / 1296000, kDy = 360.0 / 648000;
constexpr double kDegrees = 45.50 / 3600.0 + 30 / 60.0 + 12;
const Six kFirstTerms = {kDx, 0, -kDegrees + kDx * 0.5, 0, -kDy, (0.50 / 3600.0 + 0 / 60.0 + 48) - kDy * 0.5};

std::string Information() {
    return AdrgLeader() + kFirst.Overview("TPSGI001") + kFirst.Record("TPSGI001") +
           kSecond.Record("TPSGI002");
}

TEST(Adrg, ReadsTheRecordOfItsImageInTheFileBesideIt) {
    const TempFolder folder;
    const LogCapture log;
    const std::string beside = folder.Write("TPSGI001.gen", Information());
    const NamedRead first = ReadByName(folder.Write("TPSGI001.IMG", AdrgLeader(true)));
    EXPECT_EQ(first.kind, "ADRG");
    EXPECT_EQ(first.used, beside);
    EXPECT_EQ(CodeOf(first.reference), "EPSG:4326");
    EXPECT_EQ(References::Terms(first.reference), kFirstTerms);
    // The last digit of the name is replaced by a 1 whatever it is; case does not matter to the record.
    const std::string second = folder.Write("tpsgi002.img", AdrgLeader(true));
    EXPECT_EQ(ReadByName(second).thrown.type, kUnsupported);  // tpsgi001.gen: another file
    folder.Write("tpsgi001.gen", Information());
    EXPECT_EQ(References::Terms(Good(second)), kSecondTerms);
    // In capitals, where only that exists.
    const TempFolder disc;
    const std::string capitals = disc.Write("TPSGI001.GEN", Information());
    for (const std::string& name : {disc.Write("TPSGI002.IMG", AdrgLeader(true)), capitals})
        EXPECT_EQ(ReadByName(name).used, capitals);
    EXPECT_EQ(References::Terms(Good(disc / "TPSGI002.IMG")), kSecondTerms);
}

TEST(Adrg, NamesTheFileThatItRead) {
    const TempFolder folder;
    BGeoReference reference;
    BString used(folder.Write("given", kFirst.Overview("ANYIMAGE")));
    // Too short to derive a name from: the given file is read, by the layout of the name's extension.
    ASSERT_TRUE(BRefADRG::Read(BString("a.OVR"), reference, used));
    EXPECT_EQ(used, BString(folder / "given"));
    EXPECT_EQ(References::Terms(reference), kFirstTerms);
    EXPECT_FALSE(BRefADRG::Read(BString("a.IMG"), reference, used));
    // One character more, and the derived name is looked for.
    EXPECT_FALSE(BRefADRG::Read(BString(folder / "TPSGI009.IMG"), reference, used));
    EXPECT_EQ(used, BString(folder / "TPSGI001.gen"));
    // By type the file itself is read.
    for (const std::string& file : {folder.Write("TPSGI002.gen", Information()),
                                    folder.Write("over.Ovr", AdrgLeader() + kSecond.Overview("ANYIMAGE"))}) {
        EXPECT_EQ(ReadTyped<BRefADRG>(file, Roads::kStrict, reference).type, "");
        EXPECT_EQ(References::Terms(reference), kSecondTerms);
    }
}

TEST(Adrg, RejectsFilesWithoutTheRecord) {
    const TempFolder folder;
    const LogCapture log;
    const std::string record = kFirst.Record("TPSGI001");
    const char* const no_tag = "Missing ADRG tag.";
    const char* const no_values = "Could not read the required values (such as Asz Bs).";
    const std::pair<std::string, const char*> cases[] = {
        {"", no_tag},
        {"adrgTPSGI001" + std::string(200, '0'), no_tag},
        {std::string("x\0", 2) + Information(), no_tag},
        {record, no_values},  // the first tag is the header's
        {"ADRG" + kFirst.Record("TPSGI009"), no_values},
        {"ADRG" + record.substr(0, record.size() - 2), no_values},
        {"ADRGADRGTPSGI00", no_values},
        {"ADRG" + std::string(50000, ' ') + record, ""},
        {"ADRG" + std::string(kLongestAdrgInfo, ' ') + record, no_values}};
    for (const auto& [content, detail] : cases) {
        const std::string file = folder.Write("TPSGI001.gen", content);
        BGeoReference reference;
        BString used;
        EXPECT_EQ(BRefADRG::Read(BString(file), reference, used), !*detail) << content.substr(0, 40);
        EXPECT_EQ(reference.HasCoordSys(), !*detail);
        EXPECT_EQ(ReadTyped<BRefADRG>(file, 0, reference).detail, detail);
    }
    AdrgValues zero = kFirst;
    zero.columns = "00000000";
    // The row's size is reported without its sign: kept for compatibility.
    ExpectSystemAlone<BRefADRG>("ADRG",
                                folder.Write("TPSGI001.gen", AdrgLeader() + "ADRG" + zero.Record("TPSGI001")),
                                "Failed creating Affine(inf 0.000000 inf 0.000000 0.000556 47.999861)");
}

TEST(Adrg, ParsesAnglesOfAllForms) {
    const std::pair<const char*, double> cases[] = {{"+0123045.50", kDegrees},     {"+123045.50", kDegrees},
                                                    {"-0123045.50", -kDegrees},    {"+xx0000.00", 0.0},
                                                    {"9123045.50", kDegrees},      {"+5.0", 0.0},
                                                    {"-0000000.50", -0.5 / 3600.0}};
    for (const auto& [text, degrees] : cases)
        EXPECT_EQ(ParseAdrgAngle(text), degrees) << text;
}

}  // namespace
}  // namespace MapAnchor
