// Files of unknown extension: which reader answers, and in which order they are asked.

#include "ChartFiles.h"
#include "Reading.h"

namespace MapAnchor {
namespace {

constexpr const char* kSixNumbers = "1\n0\n0\n-1\n5\n5\n";
constexpr const char* kChart = "KNP/GD=WGS84\n";

TEST(Probing, TheFirstThatAnswersWins) {
    const TempFolder folder;
    const LogCapture log;
    // Frames within the text that six numbers would make of them.
    const auto with_numbers = [](std::uint64_t records) {
        FrameFile frame;
        frame.tag = 40;
        frame.records = records;
        return kSixNumbers + frame.Bytes().substr(std::string(kSixNumbers).size());
    };
    folder.Write("TPSGI001.gen", "no description");
    const std::tuple<const char*, std::string, const char*> cases[] = {
        {"both.dat", with_numbers(2), "CADRG"},
        {"broken.dat", with_numbers(0), "WLD"},
        {"TPSGI002.img", AdrgLeader(true) + "\n1\n1\n0\n0\n-1\n5\n", "WLD"},
        {"numbers_first.dat", std::string(kSixNumbers) + kChart, "WLD"},
        {"chart.dat", kChart, "KAP"},
        {"settings.dat", std::string("[Transform Settings]\n") + kChart, ""},
        {"nothing.dat", "nothing", ""}};
    for (const auto& [name, content, kind] : cases) {
        const std::string file = folder.Write(name, content);
        EXPECT_EQ(ReadByName(file).kind, kind) << name;
        EXPECT_EQ(ReadByName(file).used, file) << name;
    }
    for (const BReferenceFormat& format : BReferenceFormats::List()) {
        const std::string name = format.GetName().StdStr();
        EXPECT_EQ(format.IsCentreAnchored(), name == "CADRG" || name == "ADRG" || name == "SID") << name;
    }
}

}  // namespace
}  // namespace MapAnchor
