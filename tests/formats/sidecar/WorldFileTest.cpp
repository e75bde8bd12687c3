// World files through the front door: the road by name and the road by type.

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
constexpr const char* kWgs84 =
    "GEOGCS[\"GCS_WGS_1984\",DATUM[\"D_WGS_1984\",SPHEROID[\"WGS_1984\",6378137.0,298.257223563]],"
    "PRIMEM[\"Greenwich\",0.0],UNIT[\"Degree\",0.0174532925199433]]";

// Rotated: half of lines 1 and 4 alone make the shift.
TEST(WorldFile, AnchorsTheAffineAtTheOuterCorner) {
    ExpectPlaces(kWld, ".tfw", {{"rotated", "2\n0.5\n-0.25\n-4\n101\n198\n", {2, -0.25, 100, 0.5, -4, 200}}});
}

// Which contents the roads take, and how they end.
TEST(WorldFile, TheRoadsTakeWhatTheyShould) {
    const std::string megabyte(1 << 20, ' ');
    const std::string binary("\x7F\x45LF\0\1\2\n\xFF\xFE\n", 10);
    constexpr Holds kPlaced{0, true};
    constexpr Ends kByTypeAlone{kUnsupported, "", ""};
    constexpr Ends kNoAffine{kUnsupported, "", kInvalidTransform};
    ExpectRoads(kWld, ".tfw",
                {{"plain", kPlain, kTaken, kPlaced},
                 {"no_end_on_the_last_line", "1\n0\n0\n-1\n5\n5", kTaken, kPlaced},
                 {"windows_line_ends", "1\r\n0\r\n0\r\n-1\r\n5\r\n5\r\n", kTaken, kPlaced},
                 {"text_behind_the_numbers", "1,x\n0;\n0 m\n-1 m\n5,5\n5e\nmore\n", kTaken, kPlaced},
                 {"quarter_turn", "0\n1\n-1\n0\n5\n5\n", kTaken, kPlaced},
                 {"blank_lines_count_as_zero", "1\n\n\n-1\n\n\n", kTaken, kPlaced},
                 {"a_megabyte_of_blanks", megabyte + "1\n0\n0\n" + megabyte + "-1" + megabyte + "\n5\n5\n",
                  kTaken, kPlaced},
                 {"byte_order_mark", "\xEF\xBB\xBF" + std::string(kPlain), kTaken, kPlaced},
                 {"terms_below_the_loose_zero", "1e-8\n0\n0\n-1e-8\n5\n5\n", kByTypeAlone, kPlaced},
                 {"all_zero", kNoExtent, kRefused},
                 {"one_axis_without_size", "1\n0\n5\n0\n5\n5\n", kRefused},
                 {"prose", "a\nb\nc\nd\ne\nf\n", kRefused},
                 {"five_lines", "1\n0\n0\n-1\n5\n", kRefused},
                 {"one_line", "1", kRefused},
                 {"empty", "", kRefused},
                 {"binary", binary, kRefused},
                 {"ten_megabytes_without_an_end", std::string(10 << 20, '1'), kRefused},
                 {"not_a_number", "nan\n0\n0\n-1\n5\n5\n", kNoAffine},
                 {"infinite", "1\n0\n0\n-1\ninf\n5\n", kNoAffine},
                 {"beyond_double", "1e999\n0\n0\n-1\n5\n5\n", kNoAffine},
                 {"not_invertible", "1\n1\n1\n1\n5\n5\n", kNoAffine}});
}

TEST(WorldFile, ReadFailuresNameTheFileAndTheLine) {
    const std::string invalid = "File <%> is an invalid WLD file.  ";
    const char* const line = "BRefWLD::Read Failure A & E (or B & C) are zero!";
    ExpectFailures(
        kWld, ".tfw",
        {{"five",
          "1\n0\n0\n-1\n5\n",
          {kInvalidFile, "BRefWLD::Read",
           invalid + "World files require 6 lines that define an Affine transform, line (6) is empty"}},
         {"zero", kNoExtent, {kInvalidFile, "BRefWLD::Read", invalid + "A & E (or B & C) are zero"}, {line}},
         {"flat",
          "1\n1\n1\n1\n5\n5\n",
          {kInvalidTransform, "BRefWLD::Read",
           "Failed creating Affine(1.000000 1.000000 4.500000 1.000000 1.000000 4.500000)"}}});
    const TempFolder folder;
    const LogCapture log;
    BGeoReference reference;
    Roads::Read(folder.Write("zero.tfw", kNoExtent), reference);
    EXPECT_EQ(log.lines, std::vector<std::string>{line});
    EXPECT_EQ(log.severities, std::vector<int>{3});
}

TEST(WorldFile, ThePrjBesideItIsReadByNameAloneAndAlsoWhenTheNumbersFail) {
    const struct {
        const char* name;
        const char* prj;
        const char* numbers;
        const char* ends;
        const char* system;
    } cases[] = {{"good", kWgs84, kPlain, "", "EPSG:4326"},
                 {"numbers_that_fail", kWgs84, kNoExtent, kUnsupported, "EPSG:4326"},
                 {"rubbish", "rubbish", kPlain, "", "none"}};
    const TempFolder folder;
    const LogCapture log;
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        const std::string file = folder.Write("map.tfw", test.numbers);
        folder.Write("map.prj", test.prj);
        BGeoReference by_name, by_type;
        EXPECT_EQ(Roads::Read(file, by_name).type, test.ends);
        EXPECT_EQ(CodeOf(by_name), test.system);
        Roads::Read(kWld, file, by_type);
        EXPECT_FALSE(by_type.HasCoordSys());
    }
}

TEST(WorldFile, WritesTwelveDecimalsAndThePrjByNameAlone) {
    const TempFolder folder;
    BGeoReference reference = References::WithAffine(1, 0, 0, 0, -1, 0);
    References::SetSystem(reference, "32633");
    const std::string lines =
        "1.000000000000\n0.000000000000\n0.000000000000\n-1.000000000000\n0.500000000000\n-0.500000000000\n";
    EXPECT_EQ(Written(folder / "name.tfw", reference), lines);
    EXPECT_EQ(Written(kWld, folder / "type.tfw", reference), lines);
    EXPECT_EQ(TempFolder::Slurp(folder / "name.prj").substr(0, 8), "PROJCS[\"");
    EXPECT_FALSE(BFileUtilities::Exists(BString(folder / "type.prj")));
    // Without a system an older prj stays.
    EXPECT_EQ(Written(folder / "name.tfw", References::WithAffine(1, 0, 0, 0, -1, 0)), lines);
    EXPECT_EQ(CodeOf(Good(folder / "name.tfw")), "EPSG:32633");
}

// What twelve decimals hold comes back: lines 1 to 4 as written, 5 and 6 too.
TEST(WorldFile, ReadSaveReadGivesTheSameLines) {
    const TempFolder folder{TempFolder::InMemory()};
    const std::string file = folder / "map.tfw";
    std::mt19937_64 random(5);
    std::uniform_real_distribution<double> unit(-1.0, 1.0);
    const auto passed = [&](const BGeoReference& reference) {
        Written(file, reference);
        return Good(kWld, file, BMapAnchor::kStrictTransform);
    };
    for (int round = 0; round < 400; ++round) {
        const double size = std::pow(10.0, -6.0 + round % 20);
        const double shift = std::pow(10.0, round % 9);
        const BGeoReference reference =
            References::WithAffine(size * unit(random), size * unit(random), shift * unit(random),
                                   size * unit(random), size * unit(random), shift * unit(random));
        const BGeoReference read = passed(reference);
        const BGeoReference reread = passed(read);
        const Six got = References::Terms(read);
        for (const std::size_t term : {0U, 1U, 3U, 4U}) {
            ASSERT_EQ(got[term], ParseDouble(PrintFixed(References::Terms(reference)[term], 12)));
            ASSERT_EQ(References::Terms(reread)[term], got[term]);
        }
        for (const std::size_t term : {2U, 5U})
            ASSERT_NEAR(References::Terms(reread)[term], got[term], 2e-12 + 4e-16 * (size + shift));
    }
}

/// A transform that no affine can tell.
BGeoReference Curved() {
    const std::vector<BPointPair> pairs = {{0, 0, 0, 0, 0, "", true},
                                           {100, 0, 100, 1, 0, "", true},
                                           {100, 100, 130, -90, 0, "", true},
                                           {0, 100, 3, -100, 0, "", true}};
    BGeoReference reference;
    reference.SetPointPairVectorAndMathTransform(
        pairs, BMathTransform(EMathTransformType::Projective, pairs, 100, 100, true));
    return reference;
}

TEST(WorldFile, WhatCannotBeWrittenSaysSo) {
    const TempFolder folder;
    const LogCapture log;
    const std::string file = folder / "map.tfw";
    // No transform: false by name, silence by type; nothing is created.
    EXPECT_EQ(Roads::Save(file, BGeoReference()).type, kUnsupported);
    EXPECT_EQ(Roads::Save(kWld, file, BGeoReference(), BMapAnchor::kStrictTransform).type, "");
    EXPECT_EQ(log.lines,
              std::vector<std::string>(2, "BRefWLD::Write Reference type requires valid MathTransform."));
    EXPECT_FALSE(BFileUtilities::Exists(BString(file)));

    // Not affine: by name the file is left alone, by type it is open by then.
    folder.Write("map.tfw", "older");
    ExpectThrown(Roads::Save(file, Curved()),
                 {kWriteFailure, "BRefWLD::Write", "Couldn't determine the Affine Referencing Parameters"});
    EXPECT_EQ(TempFolder::Slurp(file), "older");
    const Thrown thrown = Roads::Save(kWld, file, Curved(), BMapAnchor::kStrictTransform);
    EXPECT_EQ(thrown.type, kInvalidTransform);
    EXPECT_TRUE(thrown.detail.starts_with("Can't write WLD file <" + file +
                                          ">, Exception thrown trying to get Affine Parameters : "))
        << thrown.detail;
    EXPECT_EQ(TempFolder::Slurp(file), "");
    EXPECT_EQ(Written(kWld, file, Curved(), 0).size(), 6 * std::string("0.000000000000\n").size());
}

}  // namespace
}  // namespace MapAnchor
