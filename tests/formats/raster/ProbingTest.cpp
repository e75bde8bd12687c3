// Files of unknown extension: who answers, and in which order they are asked.

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
    const struct {
        const char* name;
        std::string content;
        const char* kind;
    } cases[] = {
        {"a.on1", FrameFile().Bytes(), "CADRG"},
        {"both.dat", with_numbers(2), "CADRG"},
        {"broken.dat", with_numbers(0), "WLD"},
        {"TPSGI002.img", AdrgLeader(true) + "\n1\n1\n0\n0\n-1\n5\n", "WLD"},
        {"numbers.dat", kSixNumbers, "WLD"},
        {"numbers_first.dat", std::string(kSixNumbers) + kChart, "WLD"},
        {"chart.dat", kChart, "KAP"},
        {"settings.dat", std::string("[Transform Settings]\n") + kChart, ""},
        {"nothing.dat", "nothing", ""},
    };
    for (const auto& test : cases) {
        const std::string file = folder.Write(test.name, test.content);
        const NamedRead read = ReadByName(file);
        EXPECT_EQ(read.kind, test.kind) << test.name;
        EXPECT_EQ(read.used, file) << test.name;
    }
}

TEST(Probing, FramesAndRectanglesAreAnchoredAtTheCentre) {
    int centred = 0;
    for (const BReferenceFormat& format : BReferenceFormats::List()) {
        const bool frame =
            format.Name == Tellurion::BString("CADRG") || format.Name == Tellurion::BString("ADRG");
        if (!frame) continue;
        EXPECT_TRUE(format.Probed && format.CentreAnchored && !format.HasType);
        ++centred;
    }
    EXPECT_EQ(centred, 2);
}

}  // namespace
}  // namespace MapAnchor
