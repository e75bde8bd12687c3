// World files through the entry point, by name and by type.

#include <Tellurion/BFileUtilities.h>
#include <Tellurion/Numbers.h>

#include "Outcomes.h"

#include <cmath>
#include <random>

namespace MapAnchor {
namespace {

using namespace Tellurion;

constexpr EReferenceType kWld = EReferenceType::WLD;
constexpr const char* kPlain = "1\n0\n0\n-1\n5\n5\n";
constexpr const char* kNoExtent = "0\n0\n0\n0\n5\n5\n";

const ReadTable kReads(kWld, ".tfw", "BRefWLD::Read");

TEST(WorldFile, IsReadByNameAndByType) {
    const std::string megabyte(1 << 20, ' ');
    constexpr Holds kPlaced{0, true};
    constexpr Ends kNoAffine{kUnsupported, "", kInvalidTransform};
    // Rotated: half of lines 1 and 4 alone make the shift to the outer corner.
    kReads.Places("rotated", "2\n0.5\n-0.25\n-4\n101\n198\n", {2, -0.25, 100, 0.5, -4, 200});
    kReads.Ends("no_end_on_the_last_line", "1\n0\n0\n-1\n5\n5", kTaken, kPlaced);
    kReads.Ends("windows_line_ends", "1\r\n0\r\n0\r\n-1\r\n5\r\n5\r\n", kTaken, kPlaced);
    kReads.Ends("text_behind_the_numbers", "1,x\n0;\n0 m\n-1 m\n5,5\n5e\nmore\n", kTaken, kPlaced);
    kReads.Ends("quarter_turn", "0\n1\n-1\n0\n5\n5\n", kTaken, kPlaced);
    kReads.Ends("blank_lines_count_as_zero", "1\n\n\n-1\n\n\n", kTaken, kPlaced);
    kReads.Ends("a_megabyte_of_blanks", megabyte + "1\n0\n0\n-1" + megabyte + "\n5\n5\n", kTaken, kPlaced);
    kReads.Ends("byte_order_mark", "\xEF\xBB\xBF" + std::string(kPlain), kTaken, kPlaced);
    kReads.Ends("terms_below_the_loose_zero", "1e-8\n0\n0\n-1e-8\n5\n5\n", {kUnsupported, "", ""}, kPlaced);
    kReads.Ends("one_axis_without_size", "1\n0\n5\n0\n5\n5\n", kRefused);
    kReads.Ends("prose", "a\nb\nc\nd\ne\nf\n", kRefused);
    kReads.Ends("empty", "", kRefused);
    kReads.Ends("ten_megabytes_without_an_end", std::string(10 << 20, '1'), kRefused);
    kReads.Ends("not_a_number", "nan\n0\n0\n-1\n5\n5\n", kNoAffine);
    kReads.Ends("infinite", "1\n0\n0\n-1\ninf\n5\n", kNoAffine);
}

TEST(WorldFile, ReadFailuresStateTheFileAndTheLine) {
    const std::string invalid = "File <%> is an invalid WLD file.  ";
    kReads.Fails("1\n0\n0\n-1\n5\n", kInvalidFile,
                 invalid + "World files require 6 lines that define an Affine transform, line (6) is empty");
    kReads.Fails(kNoExtent, kInvalidFile, invalid + "A & E (or B & C) are zero",
                 {"BRefWLD::Read Failure A & E (or B & C) are zero!"});
    kReads.Fails("1\n1\n1\n1\n5\n5\n", kInvalidTransform,
                 "Failed creating Affine(1.000000 1.000000 4.500000 1.000000 1.000000 4.500000)");
}

// By name alone, and whatever the numbers and the prj file hold.
TEST(WorldFile, ThePrjBesideItNamesTheSystem) {
    const TempFolder folder;
    const LogCapture log;
    const std::string wgs84 = References::Of("4326", {1, 0, 0, 0, -1, 0}).CoordSys->ToPRJ().StdStr();
    const std::tuple<std::string, const char*, const char*, const char*> cases[] = {
        {wgs84, kPlain, "", "EPSG:4326"},
        {wgs84, kNoExtent, kUnsupported, "EPSG:4326"},
        {"rubbish", kPlain, "", "none"}};
    for (const auto& [prj, numbers, ends, system] : cases) {
        const std::string file = folder.Write("map.tfw", numbers);
        folder.Write("map.prj", prj);
        BGeoReference by_name, by_type;
        EXPECT_EQ(Roads::Read(file, by_name).type, ends);
        EXPECT_EQ(CodeOf(by_name), system);
        Roads::Read(kWld, file, by_type);
        EXPECT_FALSE(by_type.HasCoordSys());
    }
    EXPECT_EQ(log.lines.at(0), "BRefWLD::Read Failure A & E (or B & C) are zero!");
    EXPECT_EQ(log.severities.at(0), 3);
}

TEST(WorldFile, IsWrittenWithTwelveDecimalsAndThePrjByNameAlone) {
    const TempFolder folder;
    const BGeoReference reference = References::Of("32633", {1, 0.25, 0, 0, -1, 0});
    const std::string lines =
        "1.000000000000\n0.000000000000\n0.250000000000\n-1.000000000000\n0.500000000000\n-0.500000000000\n";
    EXPECT_EQ(Written(folder / "name.tfw", reference), lines);
    EXPECT_EQ(Written(kWld, folder / "type.tfw", reference), lines);
    EXPECT_EQ(TempFolder::Slurp(folder / "name.prj").substr(0, 8), "PROJCS[\"");
    EXPECT_FALSE(BFileUtilities::Exists(BString(folder / "type.prj")));
    // Without a system an older prj stays.
    Written(folder / "name.tfw", References::WithAffine(1, 0, 0, 0, -1, 0));
    EXPECT_EQ(CodeOf(Good(folder / "name.tfw")), "EPSG:32633");
}

// What twelve decimals hold comes back: lines 1 to 4 as written, 5 and 6 too.
TEST(WorldFile, KeepsItsLinesWhenReadAndSaved) {
    const TempFolder folder;
    const std::string file = folder / "map.tfw";
    std::mt19937_64 random(5);
    const auto term = [&](double size) {
        return size * std::uniform_real_distribution<double>(-1.0, 1.0)(random);
    };
    for (int round = 0; round < 200; ++round) {
        const double size = std::pow(10.0, -6.0 + round % 20), shift = std::pow(10.0, round % 9);
        const Six given = {term(size), term(size), term(shift), term(size), term(size), term(shift)};
        Written(file, References::WithAffine(given[0], given[1], given[2], given[3], given[4], given[5]));
        const BGeoReference read = Good(kWld, file, BMapAnchor::kStrictTransform);
        Written(file, read);
        const Six got = References::Terms(read), again = References::Terms(Good(kWld, file));
        for (const std::size_t i : {0U, 1U, 3U, 4U}) {
            ASSERT_EQ(got[i], ParseDouble(PrintFixed(given[i], 12)));
            ASSERT_EQ(again[i], got[i]);
        }
        for (const std::size_t i : {2U, 5U})
            ASSERT_NEAR(again[i], got[i], 2e-12 + 4e-16 * (size + shift));
    }
}

TEST(WorldFile, WriteFailuresLeaveNoFileOrStateTheReason) {
    const TempFolder folder;
    const LogCapture log;
    const std::string file = folder / "map.tfw", write = "BRefWLD::Write";
    // No transform: false by name, silence by type; nothing is created.
    EXPECT_EQ(Roads::Save(file, BGeoReference()).type, kUnsupported);
    EXPECT_EQ(Roads::Save(kWld, file, BGeoReference(), BMapAnchor::kStrictTransform).type, "");
    EXPECT_EQ(log.lines,
              std::vector<std::string>(2, "BRefWLD::Write Reference type requires valid MathTransform."));
    EXPECT_FALSE(BFileUtilities::Exists(BString(file)));

    BGeoReference curved;
    const std::vector<BPointPair> pairs = {{0, 0, 0, 0, 0, "", true},
                                           {9, 0, 9, 1, 0, "", true},
                                           {9, 9, 12, -8, 0, "", true},
                                           {0, 9, 1, -9, 0, "", true}};
    curved.SetMathTransform(BMathTransform(EMathTransformType::Projective, pairs, 9, 9, true));
    folder.Write("map.tfw", "older");
    ExpectThrown(Roads::Save(file, curved), kWriteFailure, write,
                 "Couldn't determine the Affine Referencing Parameters");
    EXPECT_EQ(TempFolder::Slurp(file), "older");
    ExpectThrown(Roads::Save(kWld, file, curved, BMapAnchor::kStrictTransform), kInvalidTransform, write,
                 "Can't write WLD file <" + file + ">, Exception thrown trying to get Affine Parameters : " +
                     "A projective transform has no affine terms (BMathTransform::GetAffineParameters).");
    EXPECT_EQ(Written(kWld, file, curved, 0).size(), 6 * std::string("0.000000000000\n").size());
}

}  // namespace
}  // namespace MapAnchor
