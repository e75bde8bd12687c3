// The front door: dispatch by type and by name, probing, failures and their log lines.

#include <MapAnchor/BMapAnchor.h>
#include <MapAnchor/BReferenceFormats.h>

#include <gtest/gtest.h>

#include "LogCapture.h"
#include "References.h"
#include "Roads.h"
#include "TempFolder.h"

#include <algorithm>

namespace MapAnchor {
namespace {

using namespace Tellurion;

constexpr const char* kSixNumbers = "1\n0\n0\n-1\n5\n5\n";
constexpr const char* kUnsupported = "BUnsupportedFileTypeException";
constexpr const char* kNotFound = "BFileNotFoundException";

struct NamedResult {
    Thrown thrown;
    BGeoReference reference;
    std::string used;
};

NamedResult ReadByName(const std::string& file) {
    NamedResult result;
    BString used("unset");
    result.thrown = WhatIsThrown([&] {
        BMapAnchor::Read(BString(file), result.reference, used, 0, 0, EMathTransformType::Affine, nullptr);
    });
    result.used = used.StdStr();
    return result;
}

BGeoReference UnitReference() {
    return References::WithAffine(1, 0, 0, 0, -1, 0);
}

Thrown ReadByType(int type, const std::string& file, BGeoReference& reference) {
    return Roads::Read(static_cast<EReferenceType>(type), file, reference);
}

Thrown SaveByType(int type, const std::string& file) {
    return Roads::Save(static_cast<EReferenceType>(type), file, UnitReference());
}

Thrown SaveByName(const std::string& file) {
    return Roads::Save(file, UnitReference());
}

TEST(ReadByName, TheExtensionPicksTheReader) {
    const TempFolder folder;
    const LogCapture log;
    for (const char* name : {"a.tfw", "a.TFW", "a.tifw", "a.jgw", "a.jpgw", "a.pgw", "a.bpw", "a.eww",
                             "a.sdw", "a.wld", "a.blw", "a.gfw", "\303\234ber \346\261\211.tfw"}) {
        const std::string file = folder.Write(name, kSixNumbers);
        const NamedResult result = ReadByName(file);
        EXPECT_EQ(result.thrown.type, "") << name;
        EXPECT_TRUE(result.reference.HasMathTransform()) << name;
        EXPECT_EQ(result.used, file);
    }
    // Six numbers in a file of an unknown extension, and in one saved but not read by name.
    for (const char* name : {"a.xyz", "a.j2w", "a.kpw"})
        EXPECT_EQ(ReadByName(folder.Write(name, kSixNumbers)).thrown.type, "") << name;
    // A raster's own extension is never probed, whatever it holds or has beside it.
    for (const char* name : {"a.jpg", "a.JPEG", "a.png", "a.bmp", "a.bsq", "a.bil", "a.gif"}) {
        const std::string file = folder.Write(name, kSixNumbers);
        const Thrown thrown = ReadByName(file).thrown;
        EXPECT_EQ(thrown.type, kUnsupported) << name;
        EXPECT_EQ(thrown.source, "BMapAnchor::Read");
        EXPECT_EQ(thrown.detail, "File <" + file + "> is not a supported reference file.");
    }
    EXPECT_TRUE(log.lines.empty());
}

TEST(ReadByName, EntryChecks) {
    const TempFolder folder;
    const LogCapture log;
    NamedResult result = ReadByName("");
    EXPECT_EQ(result.thrown.type, kNotFound);
    EXPECT_EQ(result.thrown.source, "BMapAnchor::Read");
    EXPECT_EQ(result.thrown.detail, "No file specified.");
    const std::string bare = folder.Write("bare", kSixNumbers);
    result = ReadByName(bare);
    EXPECT_EQ(result.thrown.type, kNotFound);
    EXPECT_EQ(result.thrown.detail, "File Extension for <" + bare + "> isn't valid.");
    EXPECT_EQ(result.used, "unset");
    // A missing file is not told from one that is not of the kind.
    EXPECT_EQ(ReadByName(folder / "missing.tfw").thrown.type, kUnsupported);
    EXPECT_EQ(ReadByName(folder / "missing.xyz").thrown.type, kUnsupported);
    EXPECT_TRUE(log.lines.empty());
}

TEST(ReadByName, ASettingsFileIsNoReference) {
    const TempFolder folder;
    const LogCapture log;
    const std::string numbers = std::string("\n") + kSixNumbers;
    EXPECT_EQ(ReadByName(folder.Write("a.set", "[Transform Settings]" + numbers)).thrown.type, kUnsupported);
    EXPECT_EQ(ReadByName(folder.Write("b.set", "[Transform Settings]\r" + numbers)).thrown.type,
              kUnsupported);
    // One that differs is six lines like any others: a heading of 0, then 1, 0, 0, -1, 5.
    EXPECT_EQ(ReadByName(folder.Write("c.set", "[transform settings]\n1\n1\n0\n5\n5\n")).thrown.type, "");
}

TEST(ReadByType, ChecksInTheirOrder) {
    const TempFolder folder;
    const LogCapture log;
    const std::string file = folder.Write("map.any", kSixNumbers);
    BGeoReference reference;
    EXPECT_EQ(ReadByType(0, "", reference).detail, "No file specified.");
    const std::string missing = folder / "missing.tfw";
    const Thrown thrown = ReadByType(99, missing, reference);
    EXPECT_EQ(thrown.type, kNotFound);
    EXPECT_EQ(thrown.detail, "File <" + missing + "> does NOT exist.");
    for (const int type : {-1, 0, 8, 12, 1000})
        EXPECT_EQ(ReadByType(type, file, reference).type, kUnsupported) << type;
    EXPECT_EQ(ReadByType(4, file, reference).type, "");
    EXPECT_TRUE(reference.HasMathTransform());
}

TEST(ReadByType, AFailureLeavesTheCallersRecordAlone) {
    const TempFolder folder;
    const LogCapture log;
    BGeoReference reference = UnitReference();
    reference.SetPixelAsPointRegistered(true);
    EXPECT_NE(ReadByType(4, folder.Write("bad.tfw", "0\n"), reference).type, "");
    EXPECT_TRUE(reference.HasMathTransform());
    EXPECT_TRUE(reference.IsPixelAsPointRegistered());
    // A success replaces all of it.
    EXPECT_EQ(ReadByType(4, folder.Write("flat.tfw", "1\n1\n1\n1\n5\n5\n"), reference).type, "");
    EXPECT_FALSE(reference.HasMathTransform());
    EXPECT_FALSE(reference.IsPixelAsPointRegistered());
}

TEST(SaveByType, NumbersThatAreNoTypeDoNothing) {
    const TempFolder folder;
    const LogCapture log;
    for (const int type : {-1, 0, 8, 12})
        EXPECT_EQ(SaveByType(type, folder / "none.tfw").type, "") << type;
    EXPECT_EQ(TempFolder::Slurp(folder / "none.tfw"), "");
    EXPECT_EQ(SaveByType(8, "").detail, "No file specified.");
}

TEST(SaveByType, KindsThatAreReadOnlyRefuse) {
    const TempFolder folder;
    const struct {
        int type;
        const char* source;
        const char* detail;
    } cases[] = {
        {5, "BrefMrSID::Write", "MrSID raster image files canot be writen using this method."},
        {6, "BrefECW::Write", "ECW raster image files canot be writen using this method."},
        {9, "BrefDOQQ::Write", "Writing of DOQQ file types is not supported."},
        {10, "BRefKAP::Write", "Writing of KAP file types is not supported."},
    };
    for (const auto& test : cases) {
        LogCapture log;
        const std::string file = folder / "refused.any";
        const Thrown thrown = SaveByType(test.type, file);
        EXPECT_EQ(thrown.type, "BGeoReferenceNotSupportedException");
        EXPECT_EQ(thrown.source, test.source);
        EXPECT_EQ(thrown.detail, test.detail);
        ASSERT_EQ(log.lines.size(), 1U);
        EXPECT_EQ(log.lines[0], "BMapAnchor::Save Attempting to save <" + file +
                                    "> threw the following exception\nThe operation being performed is not "
                                    "supported by this reference type " +
                                    test.detail + " (" + test.source + ").");
    }
}

TEST(SaveByName, TheExtensionPicksTheWriter) {
    const TempFolder folder;
    const LogCapture log;
    for (const char* name : {"a.tfw", "a.TIFW", "a.jgw", "a.wld", "a.j2w", "a.kpw"}) {
        EXPECT_EQ(SaveByName(folder / name).type, "");
        EXPECT_NE(TempFolder::Slurp(folder / name), "") << name;
    }
    for (const char* name : {"a.jpg", "a.xyz", "a.kap", "a.pdf"}) {
        const Thrown thrown = SaveByName(folder / name);
        EXPECT_EQ(thrown.type, kUnsupported) << name;
        EXPECT_EQ(thrown.source, "BMapAnchor::Save");
        EXPECT_EQ(TempFolder::Slurp(folder / name), "") << name;
    }
    EXPECT_EQ(SaveByName("").detail, "No file specified.");
    EXPECT_EQ(SaveByName(folder / "bare").detail,
              "File Extension for <" + (folder / "bare") + "> isn't valid.");
    EXPECT_TRUE(log.lines.empty());
}

TEST(SaveByName, AFailureIsLoggedOnItsWayOut) {
    const TempFolder folder;
    LogCapture log;
    const std::string file = folder / "missing/a.tfw";
    EXPECT_EQ(SaveByName(file).type, "BFileAccessException");
    ASSERT_EQ(log.lines.size(), 2U);
    EXPECT_EQ(log.lines[1],
              "BMapAnchor::Save Attempting to save <" + file +
                  "> threw the following exception\nWLD write could not open file (BRefWLD::Write).");
}

TEST(GenerateWorldFileExt, FollowsTheRastersExtension) {
    const struct {
        const char* raster;
        const char* extension;
    } cases[] = {
        {"a.tif", ".tfw"},   {"MAP.TIF", ".tfw"},        {"a.tiff", ".tifw"}, {"a.jpg", ".jgw"},
        {"a.jpeg", ".jpgw"}, {"a.png", ".pgw"},          {"a.jp2", ".j2w"},   {"a.sid", ".sdw"},
        {"a.c", ".cw"},      {"a.geotiff", ".geotiffw"}, {"x.y/bare", "w"},
    };
    for (const auto& test : cases)
        EXPECT_EQ(BMapAnchor::GenerateWorldFileExt(test.raster), BString(test.extension)) << test.raster;
}

TEST(ReferenceFormats, SayWhatTheFrontDoorDoes) {
    const auto formats = BReferenceFormats::List();
    const auto found = std::find_if(formats.begin(), formats.end(),
                                    [](const auto& format) { return format.Name == BString("WLD"); });
    ASSERT_NE(found, formats.end());
    EXPECT_TRUE(found->ReadsByType && found->SavesByType && found->Probed);
    EXPECT_EQ(found->Type, EReferenceType::WLD);
    EXPECT_EQ(found->ReadExtensions.size(), 11U);
    EXPECT_EQ(found->SaveExtensions.size(), 13U);
}

}  // namespace
}  // namespace MapAnchor
