// World files through the front door: the road by name and the road by type.

#include <MapAnchor/BMapAnchor.h>
#include <Tellurion/BFileUtilities.h>
#include <Tellurion/Numbers.h>

#include <gtest/gtest.h>

#include "LogCapture.h"
#include "TempFolder.h"
#include "Thrown.h"

#include <sys/stat.h>
#include <unistd.h>
#include <array>
#include <cmath>
#include <memory>
#include <random>
#include <sstream>

namespace MapAnchor {
namespace {

using namespace Tellurion;

constexpr const char* kInvalidFile = "BGeoReferenceInvalidReferenceFileException";
constexpr const char* kInvalidTransform = "BGeoReferenceInvalidTransformException";
constexpr const char* kUnsupported = "BUnsupportedFileTypeException";
constexpr const char* kNoExtent = "BRefWLD::Read Failure A & E (or B & C) are zero!";
constexpr const char* kWgs84 =
    "GEOGCS[\"GCS_WGS_1984\",DATUM[\"D_WGS_1984\",SPHEROID[\"WGS_1984\",6378137.0,298.257223563]],"
    "PRIMEM[\"Greenwich\",0.0],UNIT[\"Degree\",0.0174532925199433]]";

Thrown ReadByName(const std::string& file, BGeoReference& reference) {
    BString used;
    return WhatIsThrown(
        [&] { BMapAnchor::Read(BString(file), reference, used, 0, 0, EMathTransformType::Affine, nullptr); });
}

Thrown ReadByType(const std::string& file, BGeoReference& reference, unsigned int flags = 0) {
    return WhatIsThrown([&] {
        BMapAnchor::Read(EReferenceType::WLD, BString(file), reference, 0, 0, EMathTransformType::Affine,
                         flags, nullptr);
    });
}

std::array<double, 6> Terms(const BGeoReference& reference) {
    std::array<double, 6> t{};
    reference.MathTransform->GetAffineParameters(t[0], t[1], t[2], t[3], t[4], t[5]);
    return t;
}

BGeoReference WithAffine(double a, double b, double c, double d, double e, double f) {
    BGeoReference reference;
    const std::unique_ptr<BMathTransform> transform(BMathTransform::CreateAffine(a, b, c, d, e, f, true));
    reference.SetMathTransform(*transform);
    return reference;
}

BGeoReference WithCoordSys(const std::string& epsg) {
    BGeoReference reference = WithAffine(1, 0, 0, 0, -1, 0);
    reference.SetCoordSys(BSharedPtr<BCoordSys>(BCoordSys::FromEPSGCode(BString(epsg))));
    return reference;
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

TEST(WorldFile, AnchorsTheAffineAtTheOuterCorner) {
    const TempFolder folder;
    BGeoReference reference;
    // Rotated: half of lines 1 and 4 alone make the shift.
    ASSERT_EQ(ReadByName(folder.Write("map.tfw", "2\n0.5\n-0.25\n-4\n101\n198\n"), reference).type, "");
    EXPECT_EQ(Terms(reference), (std::array<double, 6>{2, -0.25, 100, 0.5, -4, 200}));
    EXPECT_FALSE(reference.HasCoordSys());
    EXPECT_FALSE(reference.IsPixelAsPointRegistered());
}

struct ContentCase {
    const char* name;
    std::string content;
    std::string by_name;  ///< type of what is thrown, empty for success
    std::string by_type;
    std::string strict;  ///< by type with both flags set
};

// Which contents the roads take, and how they end.
TEST(WorldFile, TheRoadsTakeWhatTheyShould) {
    const std::string megabyte(1 << 20, ' ');
    const std::vector<ContentCase> cases = {
        {"plain", "1\n0\n0\n-1\n5\n5\n", "", "", ""},
        {"no_end_on_the_last_line", "1\n0\n0\n-1\n5\n5", "", "", ""},
        {"windows_line_ends", "1\r\n0\r\n0\r\n-1\r\n5\r\n5\r\n", "", "", ""},
        {"text_behind_the_numbers", "1,x\n0;\n0 m\n-1 m\n5,5\n5e\nmore\n", "", "", ""},
        {"quarter_turn", "0\n1\n-1\n0\n5\n5\n", "", "", ""},
        {"blank_lines_count_as_zero", "1\n\n\n-1\n\n\n", "", "", ""},
        {"one_megabyte_of_blanks", megabyte + "1\n0\n0\n" + megabyte + "-1" + megabyte + "\n5\n5\n", "", "",
         ""},
        {"byte_order_mark",
         "\xEF\xBB\xBF"
         "1\n0\n0\n-1\n5\n5\n",
         "", "", ""},
        {"terms_below_the_loose_zero", "1e-8\n0\n0\n-1e-8\n5\n5\n", kUnsupported, "", ""},
        {"all_zero", "0\n0\n0\n0\n5\n5\n", kUnsupported, kInvalidFile, kInvalidFile},
        {"one_axis_without_size", "1\n0\n5\n0\n5\n5\n", kUnsupported, kInvalidFile, kInvalidFile},
        {"prose", "a\nb\nc\nd\ne\nf\n", kUnsupported, kInvalidFile, kInvalidFile},
        {"five_lines", "1\n0\n0\n-1\n5\n", kUnsupported, kInvalidFile, kInvalidFile},
        {"one_line", "1", kUnsupported, kInvalidFile, kInvalidFile},
        {"empty", "", kUnsupported, kInvalidFile, kInvalidFile},
        {"binary",
         std::string("\x7F"
                     "ELF\0\1\2\n\xFF\xFE\n",
                     10),
         kUnsupported, kInvalidFile, kInvalidFile},
        {"ten_megabytes_without_an_end", std::string(10 << 20, '1'), kUnsupported, kInvalidFile,
         kInvalidFile},
        {"not_a_number", "nan\n0\n0\n-1\n5\n5\n", kUnsupported, "", kInvalidTransform},
        {"infinite", "1\n0\n0\n-1\ninf\n5\n", kUnsupported, "", kInvalidTransform},
        {"beyond_double", "1e999\n0\n0\n-1\n5\n5\n", kUnsupported, "", kInvalidTransform},
        {"not_invertible", "1\n1\n1\n1\n5\n5\n", kUnsupported, "", kInvalidTransform},
    };
    const TempFolder folder;
    const LogCapture log;
    for (const ContentCase& test : cases) {
        const std::string file = folder.Write(std::string(test.name) + ".tfw", test.content);
        BGeoReference reference;
        EXPECT_EQ(ReadByName(file, reference).type, test.by_name) << test.name;
        EXPECT_EQ(reference.HasMathTransform(), test.by_name.empty()) << test.name;
        BGeoReference typed;
        EXPECT_EQ(ReadByType(file, typed).type, test.by_type) << test.name;
        EXPECT_EQ(typed.HasMathTransform(), test.strict.empty()) << test.name;
        EXPECT_EQ(ReadByType(file, typed, BMapAnchor::kStrictTransform).type, test.strict) << test.name;
    }
}

TEST(WorldFile, ReadFailuresNameTheFileAndTheLine) {
    const TempFolder folder;
    LogCapture log;
    BGeoReference reference;
    const std::string five = folder.Write("five.tfw", "1\n0\n0\n-1\n5\n");
    Thrown thrown = ReadByType(five, reference);
    EXPECT_EQ(thrown.source, "BRefWLD::Read");
    EXPECT_EQ(thrown.detail, "File <" + five +
                                 "> is an invalid WLD file.  World files require 6 lines that define "
                                 "an Affine transform, line (6) is empty");
    EXPECT_TRUE(log.lines.empty());

    const std::string zero = folder.Write("zero.tfw", "0\n0\n0\n0\n5\n5\n");
    thrown = ReadByType(zero, reference);
    EXPECT_EQ(thrown.detail, "File <" + zero + "> is an invalid WLD file.  A & E (or B & C) are zero");
    ReadByName(zero, reference);
    EXPECT_EQ(log.lines, (std::vector<std::string>{kNoExtent, kNoExtent}));
    EXPECT_EQ(log.severities, (std::vector<int>{3, 3}));

    thrown =
        ReadByType(folder.Write("flat.tfw", "1\n1\n1\n1\n5\n5\n"), reference, BMapAnchor::kStrictTransform);
    EXPECT_EQ(thrown.source, "BRefWLD::Read");
    EXPECT_EQ(thrown.detail, "Failed creating Affine(1.000000 1.000000 4.500000 1.000000 1.000000 4.500000)");

    thrown = ReadByType(folder / ".", reference);
    EXPECT_EQ(thrown.type, "BFileAccessException");
    EXPECT_EQ(thrown.detail, "Could not open the reference file <" + (folder / ".") + "> for reading.");
}

TEST(WorldFile, ThePrjBesideItIsReadByNameAloneAndAlsoWhenTheNumbersFail) {
    const TempFolder folder;
    const LogCapture log;
    const std::string file = folder.Write("map.tfw", "1\n0\n0\n-1\n5\n5\n");
    folder.Write("map.prj", kWgs84);
    BGeoReference by_name, by_type, refused;
    EXPECT_EQ(ReadByName(file, by_name).type, "");
    ASSERT_TRUE(by_name.HasCoordSys());
    EXPECT_EQ(by_name.CoordSys->ToEPSGCode(), BString("EPSG:4326"));
    EXPECT_EQ(ReadByType(file, by_type).type, "");
    EXPECT_FALSE(by_type.HasCoordSys());

    folder.Write("map.tfw", "0\n0\n0\n0\n5\n5\n");
    EXPECT_EQ(ReadByName(file, refused).type, kUnsupported);
    EXPECT_TRUE(refused.HasCoordSys());

    folder.Write("map.tfw", "1\n0\n0\n-1\n5\n5\n");
    folder.Write("map.prj", "rubbish");
    BGeoReference without;
    EXPECT_EQ(ReadByName(file, without).type, "");
    EXPECT_FALSE(without.HasCoordSys());
}

TEST(WorldFile, WritesTwelveDecimalsAndThePrjByNameAlone) {
    const TempFolder folder;
    const BGeoReference reference = WithCoordSys("32633");
    const std::string by_name = folder / "name.tfw";
    const std::string by_type = folder / "type.tfw";
    BMapAnchor::Save(BString(by_name), reference, 10, 10, BString(), nullptr);
    BMapAnchor::Save(EReferenceType::WLD, BString(by_type), reference, 10, 10, BString(), 0, nullptr);
    const std::string expected =
        "1.000000000000\n0.000000000000\n0.000000000000\n-1.000000000000\n0.500000000000\n-0.500000000000\n";
    EXPECT_EQ(TempFolder::Slurp(by_name), expected);
    EXPECT_EQ(TempFolder::Slurp(by_type), expected);
    EXPECT_EQ(TempFolder::Slurp(folder / "name.prj").substr(0, 8), "PROJCS[\"");
    EXPECT_FALSE(BFileUtilities::Exists(BString(folder / "type.prj")));

    BGeoReference back;
    EXPECT_EQ(ReadByName(by_name, back).type, "");
    ASSERT_TRUE(back.HasCoordSys());
    EXPECT_EQ(back.CoordSys->ToEPSGCode(), BString("EPSG:32633"));

    // Without a system an older prj stays.
    BMapAnchor::Save(BString(by_name), WithAffine(1, 0, 0, 0, -1, 0), 10, 10, BString(), nullptr);
    EXPECT_TRUE(BFileUtilities::Exists(BString(folder / "name.prj")));
}

double ToTwelveDecimals(double value) {
    return ParseDouble(PrintFixed(value, 12));
}

// What twelve decimals hold comes back: lines 1 to 4 as written, 5 and 6 too.
TEST(WorldFile, ReadSaveReadGivesTheSameLines) {
    const TempFolder folder;
    const BString file(folder / "map.tfw");
    const BString again(folder / "again.tfw");
    std::mt19937_64 random(5);
    std::uniform_real_distribution<double> unit(-1.0, 1.0);
    for (int round = 0; round < 400; ++round) {
        const double size = std::pow(10.0, -6.0 + round % 20);
        const double shift = std::pow(10.0, round % 9);
        const BGeoReference reference =
            WithAffine(size * unit(random), size * unit(random), shift * unit(random), size * unit(random),
                       size * unit(random), shift * unit(random));
        BMapAnchor::Save(file, reference, 0, 0, BString(), nullptr);
        BGeoReference read, reread;
        ASSERT_EQ(ReadByType(file.StdStr(), read, BMapAnchor::kStrictTransform).type, "");
        const auto written = Terms(reference);
        const auto got = Terms(read);
        for (const std::size_t term : {0U, 1U, 3U, 4U})
            ASSERT_EQ(got[term], ToTwelveDecimals(written[term]));
        BMapAnchor::Save(again, read, 0, 0, BString(), nullptr);
        ASSERT_EQ(ReadByType(again.StdStr(), reread, BMapAnchor::kStrictTransform).type, "");
        const double tolerance = 2e-12 + 4e-16 * (size + shift);
        for (const std::size_t term : {2U, 5U})
            ASSERT_NEAR(Terms(reread)[term], got[term], tolerance);
        for (const std::size_t term : {0U, 1U, 3U, 4U})
            ASSERT_EQ(Terms(reread)[term], got[term]);
    }
}

TEST(WorldFile, WhatCannotBeWrittenSaysSo) {
    const TempFolder folder;
    LogCapture log;
    const std::string file = folder / "map.tfw";
    const auto save_by_name = [](const std::string& path, const BGeoReference& reference) {
        return WhatIsThrown([&] { BMapAnchor::Save(BString(path), reference, 9, 9, BString(), nullptr); });
    };
    const auto save_by_type = [](const std::string& path, const BGeoReference& reference,
                                 unsigned int flags) {
        return WhatIsThrown([&] {
            BMapAnchor::Save(EReferenceType::WLD, BString(path), reference, 9, 9, BString(), flags, nullptr);
        });
    };

    // No transform: false by name, silence by type; nothing is created.
    EXPECT_EQ(save_by_name(file, BGeoReference()).type, kUnsupported);
    EXPECT_EQ(save_by_type(file, BGeoReference(), BMapAnchor::kStrictTransform).type, "");
    EXPECT_EQ(log.lines,
              std::vector<std::string>(2, "BRefWLD::Write Reference type requires valid MathTransform."));
    EXPECT_FALSE(BFileUtilities::Exists(BString(file)));

    // Not affine: by name the file is left alone, by type it is open by then.
    folder.Write("map.tfw", "older");
    Thrown thrown = save_by_name(file, Curved());
    EXPECT_EQ(thrown.type, "BGeoReferenceWriteException");
    EXPECT_EQ(thrown.source, "BRefWLD::Write");
    EXPECT_EQ(thrown.detail, "Couldn't determine the Affine Referencing Parameters");
    EXPECT_EQ(TempFolder::Slurp(file), "older");
    thrown = save_by_type(file, Curved(), BMapAnchor::kStrictTransform);
    EXPECT_EQ(thrown.type, kInvalidTransform);
    EXPECT_EQ(thrown.detail.rfind("Can't write WLD file <" + file +
                                      ">, Exception thrown trying to get Affine "
                                      "Parameters : ",
                                  0),
              0U)
        << thrown.detail;
    EXPECT_EQ(TempFolder::Slurp(file), "");
    EXPECT_EQ(save_by_type(file, Curved(), 0).type, "");
    EXPECT_EQ(TempFolder::Slurp(file).size(), 6 * std::string("0.000000000000\n").size());

    // A file that cannot be opened.
    const std::string nowhere = folder / "missing/map.tfw";
    log.lines.clear();
    thrown = save_by_name(nowhere, WithAffine(1, 0, 0, 0, 1, 0));
    EXPECT_EQ(thrown.type, "BFileAccessException");
    EXPECT_EQ(thrown.detail, "WLD write could not open file");
    thrown = save_by_type(nowhere, WithAffine(1, 0, 0, 0, 1, 0), 0);
    EXPECT_EQ(thrown.detail, "Couldn't open WLD file <" + nowhere + "> for writing.");
    EXPECT_EQ(log.lines[0], "BRefWLD::Write Failed to open file <" + nowhere + ">");
}

// The disk fills up behind the writer's back: both roads must tell.
TEST(WorldFile, AFullDeviceIsNeverSilent) {
    const TempFolder folder;
    const LogCapture log;
    const std::string file = folder / "full.tfw";
    ASSERT_EQ(symlink("/dev/full", file.c_str()), 0);
    const BGeoReference reference = WithAffine(1, 0, 0, 0, -1, 0);
    const auto check = [&](const Thrown& thrown) {
        EXPECT_EQ(thrown.type, "BGeoReferenceWriteException");
        EXPECT_EQ(thrown.source, "BRefWLD::Write");
        EXPECT_NE(thrown.detail.find(file), std::string::npos) << thrown.detail;
    };
    check(WhatIsThrown([&] { BMapAnchor::Save(BString(file), reference, 9, 9, BString(), nullptr); }));
    check(WhatIsThrown([&] {
        BMapAnchor::Save(EReferenceType::WLD, BString(file), reference, 9, 9, BString(), 0, nullptr);
    }));
}

}  // namespace
}  // namespace MapAnchor
