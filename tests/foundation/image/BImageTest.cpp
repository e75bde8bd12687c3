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

/// An RPF header without NITF around it.
std::string Rpf(const std::string& start, const std::string& standard) {
    return start + "001ZC013.ON1\1" + standard + std::string(30, ' ');
}

TEST(BImage, RecognisesImagesByTheirFirstBytes) {
    const std::string general = Iso8211({"000", "001", "DRF", "DSI", "OVI", "GEN", "SPR"});
    const std::string big("\0\0\x30", 3), little("\xFF\x30\0", 3), other("\xFF\0\x30", 3);
    const struct {
        const char* name;
        std::string content;
        bool adrg, cadrg;
    } cases[] = {{"general_information", general, true, false},
                 {"overview_or_image", Iso8211({"000", "001", "PAD", "SCN"}), true, false},
                 {"transmittal_header", Iso8211({"000", "001", "VDR", "FDR"}), false, false},
                 {"directory_cut_short", general.substr(0, 40), false, false},
                 {"leader_cut_short", general.substr(0, 20), false, false},
                 {"entries_without_length", "008182L   0600115   0000DSIGEN", false, false},
                 {"tag_near_the_start", std::string("\0\0\0\0RPFHDR", 10), false, true},
                 {"bare_rpf", Rpf(big, "MIL-C-89038"), false, true},
                 {"bare_rpf_little_endian", Rpf(little, "MIL-STD-2411"), false, true},
                 {"bare_rpf_in_the_other_order", Rpf(other, "MIL-C-89038"), false, false},
                 {"bare_rpf_without_its_standard", Rpf(big, "           "), false, false},
                 {"bare_rpf_cut_short", Rpf(big, "MIL-C-89038").substr(0, 20), false, false},
                 {"rpf_in_nitf", "NITF02.0" + std::string(400, ' ') + "rpfhdr00048", false, true},
                 {"rpf_too_far_in", std::string(510, ' ') + "RPFHDR", false, false},
                 {"empty", "", false, false}};
    const TempFolder folder;
    for (const auto& test : cases) {
        const BString path(folder.Write(test.name, test.content));
        EXPECT_EQ(BImage::CheckIfADRGReader(path), test.adrg) << test.name;
        EXPECT_EQ(BImage::CheckIfCADRGReader(path), test.cadrg) << test.name;
    }
    for (const BString& path : {BString(folder / "missing"), BString(folder / ".")})
        EXPECT_FALSE(BImage::CheckIfADRGReader(path) || BImage::CheckIfCADRGReader(path)) << path;
}

}  // namespace
}  // namespace Tellurion
