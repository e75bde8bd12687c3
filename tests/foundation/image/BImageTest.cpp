#include <Tellurion/BImage.h>

#include <gtest/gtest.h>

#include "TempFolder.h"

namespace Tellurion {
namespace {

/// An ISO 8211 file: a leader with a directory of these three-letter tags.
std::string Iso8211(const std::vector<std::string>& tags) {
    std::string directory;
    for (const std::string& tag : tags)
        directory += tag + "0420031";
    return "008182L   0600115   3403" + directory + "\x1E" + "GENERAL_INFORMATION_FILE";
}

struct ImageCase {
    const char* name;
    std::string content;
    bool adrg;
    bool cadrg;
};

TEST(BImage, TellsImagesByTheirFirstBytes) {
    const std::string general = Iso8211({"000", "001", "DRF", "DSI", "OVI", "GEN", "SPR"});
    const std::vector<ImageCase> cases = {
        {"general_information", general, true, false},
        {"overview_or_image", Iso8211({"000", "001", "PAD", "SCN"}), true, false},
        {"transmittal_header", Iso8211({"000", "001", "VDR", "FDR"}), false, false},
        {"other_iso_8211", Iso8211({"000", "001", "CATD"}), false, false},
        {"directory_cut_short", general.substr(0, 40), false, false},
        {"leader_cut_short", general.substr(0, 20), false, false},
        {"entries_of_no_length", "008182L   0600115   0000DSIGEN", false, false},
        {"tag_near_the_start", std::string("\0\0\0\0RPFHDR", 10), false, true},
        {"bare_rpf", std::string("\0\0\x30", 3) + "001ZC013.ON1\1MIL-C-89038" + std::string(30, ' '), false,
         true},
        {"bare_rpf_little_endian",
         std::string("\xFF\x30\0", 3) + "001ZC013.ON1\1MIL-STD-2411" + std::string(30, ' '), false, true},
        {"bare_rpf_in_the_other_order",
         std::string("\xFF\0\x30", 3) + "001ZC013.ON1\1MIL-C-89038" + std::string(30, ' '), false, false},
        {"bare_rpf_without_its_standard", std::string("\0\0\x30", 3) + std::string(60, ' '), false, false},
        {"bare_rpf_cut_short", std::string("\0\0\x30", 3) + "001ZC013.ON1\1MIL", false, false},
        {"rpf_in_nitf", "NITF02.0" + std::string(400, ' ') + "rpfhdr00048", false, true},
        {"rpf_too_far_in", std::string(510, ' ') + "RPFHDR", false, false},
        {"empty", "", false, false},
        {"text", "1\n0\n0\n-1\n5\n5\n", false, false},
    };
    const TempFolder folder;
    for (const ImageCase& test : cases) {
        const BString path(folder.Write(test.name, test.content));
        EXPECT_EQ(BImage::CheckIfADRGReader(path), test.adrg) << test.name;
        EXPECT_EQ(BImage::CheckIfCADRGReader(path), test.cadrg) << test.name;
    }
    EXPECT_FALSE(BImage::CheckIfADRGReader(BString(folder / "missing")));
    EXPECT_FALSE(BImage::CheckIfCADRGReader(BString(folder / ".")));
}

}  // namespace
}  // namespace Tellurion
