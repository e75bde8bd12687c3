// The entry point: dispatch by type and by name, probing, failures and their log lines.

#include <MapAnchor/BMapAnchor.h>
#include <MapAnchor/BReferenceFormats.h>

#include "Outcomes.h"

namespace MapAnchor {
namespace {

using namespace Tellurion;

constexpr const char* kSixNumbers = "1\n0\n0\n-1\n5\n5\n";
constexpr const char* kNotFound = "BFileNotFoundException";

class Entry : public testing::Test {
protected:
    Thrown ReadByName(const std::string& file) {
        reference = BGeoReference();
        BString name("unset");
        const Thrown thrown = WhatIsThrown([&] {
            BMapAnchor::Read(BString(file), reference, name, 0, 0, EMathTransformType::Affine, nullptr);
        });
        used = name.StdStr();
        return thrown;
    }
    Thrown ReadByType(int type, const std::string& file) {
        return Roads::Read(static_cast<EReferenceType>(type), file, reference);
    }
    Thrown SaveByType(int type, const std::string& file) const {
        return Roads::Save(static_cast<EReferenceType>(type), file, unit);
    }

    const BGeoReference unit = References::WithAffine(1, 0, 0, 0, -1, 0);
    BGeoReference reference;
    std::string used;
    const TempFolder folder;
    LogCapture log;
};

TEST_F(Entry, PicksReaderAndWriterByTheExtension) {
    // Read and saved; saved, and read as any file of unknown extension; only read.
    for (const std::string name :
         {"a.tfw", "a.TFW", "a.tifw", "a.jgw", "a.jpgw", "a.pgw", "a.bpw", "a.eww", "a.sdw", "a.wld", "a.blw",
          "a.gfw", "\303\234ber \346\261\211.tfw", "a.j2w", "a.kpw", "a.xyz"}) {
        const std::string file = folder.Write(name, kSixNumbers);
        EXPECT_EQ(ReadByName(file).type, "") << name;
        EXPECT_TRUE(reference.HasMathTransform()) << name;
        EXPECT_EQ(used, file);
        EXPECT_EQ(Roads::Save(folder / ("saved " + name), unit).type, name == "a.xyz" ? kUnsupported : "")
            << name;
    }
    // A raster's own extension is never probed, whatever it holds or has beside it.
    for (const char* name : {"a.jpg", "a.JPEG", "a.png", "a.bmp", "a.bsq", "a.bil", "a.gif"}) {
        const std::string file = folder.Write(name, kSixNumbers);
        const std::string detail = "File <" + file + "> is not a supported reference file.";
        ExpectThrown(ReadByName(file), kUnsupported, "BMapAnchor::Read", detail);
        ExpectThrown(Roads::Save(file, unit), kUnsupported, "BMapAnchor::Save", detail);
        EXPECT_EQ(TempFolder::Slurp(file), kSixNumbers);
    }
    // A missing file and a file of settings; one that only resembles it is six lines.
    EXPECT_EQ(ReadByName(folder / "missing.tfw").type, kUnsupported);
    EXPECT_EQ(ReadByName(folder / "missing.xyz").type, kUnsupported);
    const std::string settings = "[Transform Settings]\r\n1\n1\n0\n5\n5\n";
    EXPECT_EQ(ReadByName(folder.Write("a.set", settings)).type, kUnsupported);
    EXPECT_EQ(ReadByName(folder.Write("b.set", "[transform" + settings.substr(10))).type, "");
    EXPECT_TRUE(log.lines.empty());
}

TEST_F(Entry, ChecksNamesInTheirOrder) {
    const std::string read = "BMapAnchor::Read", save = "BMapAnchor::Save", no_file = "No file specified.";
    const std::string bare = folder.Write("bare", kSixNumbers), missing = folder / "missing.tfw";
    const std::string no_extension = "File Extension for <" + bare + "> isn't valid.";
    ExpectThrown(ReadByName(""), kNotFound, read, no_file);
    ExpectThrown(ReadByName(bare), kNotFound, read, no_extension);
    EXPECT_EQ(used, "unset");
    ExpectThrown(ReadByType(0, ""), kNotFound, read, no_file);
    ExpectThrown(ReadByType(99, missing), kNotFound, read, "File <" + missing + "> does NOT exist.");
    ExpectThrown(Roads::Save("", unit), kNotFound, save, no_file);
    ExpectThrown(Roads::Save(bare, unit), kNotFound, save, no_extension);
    ExpectThrown(SaveByType(8, ""), kNotFound, save, no_file);
    // A number that is not a type is unsupported on a read and ignored on a save.
    for (const int type : {-1, 0, 8, 12, 1000}) {
        EXPECT_EQ(ReadByType(type, bare).type, kUnsupported) << type;
        EXPECT_EQ(SaveByType(type, missing).type, "") << type;
    }
    EXPECT_EQ(TempFolder::Slurp(missing), "");
    EXPECT_TRUE(log.lines.empty());
}

TEST_F(Entry, ReplacesTheCallersRecordByTypeOnSuccessAlone) {
    reference = unit;
    reference.SetPixelAsPointRegistered(true);
    EXPECT_NE(ReadByType(4, folder.Write("bad.tfw", "0\n")).type, "");
    EXPECT_TRUE(reference.HasMathTransform() && reference.IsPixelAsPointRegistered());
    EXPECT_EQ(ReadByType(4, folder.Write("flat.tfw", "1\n1\n1\n1\n5\n5\n")).type, "");
    EXPECT_FALSE(reference.HasMathTransform() || reference.IsPixelAsPointRegistered());
}

TEST_F(Entry, RefusesToSaveReadOnlyFormats) {
    const std::tuple<int, const char*, std::string> cases[] = {
        {5, "BrefMrSID::Write", "MrSID raster image files canot be writen using this method."},
        {6, "BrefECW::Write", "ECW raster image files canot be writen using this method."},
        {9, "BrefDOQQ::Write", "Writing of DOQQ file types is not supported."},
        {10, "BRefKAP::Write", "Writing of KAP file types is not supported."}};
    const std::string file = folder / "refused.any";
    for (const auto& [type, source, detail] : cases) {
        ExpectThrown(SaveByType(type, file), kNotSupported, source, detail);
        EXPECT_EQ(log.lines.back(),
                  "BMapAnchor::Save Attempting to save <" + file +
                      "> threw the following exception\nThe operation being performed is not "
                      "supported by this reference type " +
                      detail + " (" + source + ").");
    }
    EXPECT_EQ(log.lines.size(), 4U);
}

TEST(GenerateWorldFileExt, FollowsTheRastersExtension) {
    const std::pair<const char*, const char*> cases[] = {
        {"a.tif", ".tfw"}, {"MAP.TIF", ".tfw"}, {"a.tiff", ".tifw"},        {"a.jpeg", ".jpgw"},
        {"a.jp2", ".j2w"}, {"a.c", ".cw"},      {"a.geotiff", ".geotiffw"}, {"x.y/bare", "w"}};
    for (const auto& [raster, extension] : cases)
        EXPECT_EQ(BMapAnchor::GenerateWorldFileExt(raster), BString(extension)) << raster;
}

TEST(ReferenceFormats, StateWhatTheEntryPointDoes) {
    for (const BReferenceFormat& format : BReferenceFormats::List()) {
        const bool is_saved_alone = format.GetName() == BString("VRT");
        EXPECT_EQ(format.ReadsByType(),
                  format.HasType() && format.GetName() != BString("DOQ") && !is_saved_alone)
            << format.GetName();
        if (format.GetType() != EReferenceType::WLD) continue;
        EXPECT_TRUE(format.SavesByType() && format.IsProbed());
        EXPECT_EQ(format.GetReadExtensions().size(), 11U);
        EXPECT_EQ(format.GetSaveExtensions().size(), 13U);
    }
}

}  // namespace
}  // namespace MapAnchor
