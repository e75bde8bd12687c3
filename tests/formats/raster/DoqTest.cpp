// Digital orthophoto quarter quadrangles: the header over the first lines.

#include "ChartFiles.h"
#include "Reading.h"

namespace MapAnchor {
namespace {

using namespace Tellurion;

TEST(Doq, TakesTheOriginAsStatedAndNad27) {
    const TempFolder folder;
    const LogCapture log;
    const NamedRead read = ReadByName(folder.Write("quad.doq", DoqFile().Bytes()));
    EXPECT_EQ(read.thrown.type, "");
    EXPECT_EQ(read.kind, "DOQ");
    EXPECT_EQ(References::Terms(read.reference), (Six{1.5, 0, 500000.125, 0, -2.5, 4123456.75}));
    EXPECT_EQ(CodeOf(read.reference), "EPSG:26712");
    EXPECT_TRUE(log.lines.empty());
}

struct DoqCase {
    const char* name;
    DoqFile file;
    std::string error;
    double x = 0.0;  ///< of the origin; 0 for no transform
    std::string system = "EPSG:26712";
    std::size_t length = std::string::npos;  ///< cut there
};

TEST(Doq, HeadersInAllTheirForms) {
    const std::string none = kNoReference;
    const auto with = [](auto change) {
        DoqFile file;
        change(file);
        return file;
    };
    const DoqCase cases[] = {
        {"line_of_no_length", with([](DoqFile& f) { f.line = 0; }), "", 500000.125},
        {"longest_line", with([](DoqFile& f) { f.line = 999999; }), "", 500000.125},
        // Any character in the exponent's place is overwritten, a digit too.
        {"no_exponent", with([](DoqFile& f) { f.x = "       50000.12500000000"; }), "", 50000.125},
        {"exponent_elsewhere", with([](DoqFile& f) { f.x = "  0.5D+06               "; }), "", 0.5},
        {"zone_with_text", with([](DoqFile& f) { f.zone = "Z 1 3 "; }), "", 500000.125, "EPSG:26713"},
        {"zone_without_digits", with([](DoqFile& f) { f.zone = "      "; }), "", 500000.125, "none"},
        {"zone_that_is_none", with([](DoqFile& f) { f.zone = "999999"; }), "", 500000.125, "none"},
        {"pixel_of_no_size", with([](DoqFile& f) { f.x_size = "         0.0"; }), ""},
        {"pixel_without_a_number", with([](DoqFile& f) { f.y_size = "   unknown  "; }), ""},
        {"origin_beyond_double", with([](DoqFile& f) { f.x = "   9.900000000000000D999"; }), ""},
        {"cut_before_the_zone", {}, none, 0.0, "none", 198},
        {"cut_before_the_pixel_size", {}, "", 0.0, "EPSG:26712", 3 * 400 + 59},
        {"empty", {}, none, 0.0, "none", 0},
    };
    const TempFolder folder;
    const LogCapture log;
    for (const DoqCase& test : cases) {
        const NamedRead read = ReadByName(folder.Write("quad.DOQ", test.file.Bytes().substr(0, test.length)));
        EXPECT_EQ(read.thrown.type, test.error) << test.name;
        EXPECT_EQ(CodeOf(read.reference), test.system) << test.name;
        ASSERT_EQ(read.reference.HasMathTransform(), test.x != 0.0) << test.name;
        if (test.x != 0.0) {
            EXPECT_EQ(References::Terms(read.reference)[2], test.x) << test.name;
        }
    }
    EXPECT_EQ(ReadByName(folder / "missing.doq").thrown.type, kUnsupported);
}

TEST(Doq, IsReadByNameAlone) {
    const TempFolder folder;
    BGeoReference reference;
    ExpectThrown(Roads::Read(EReferenceType::DOQQ, folder.Write("quad.doq", DoqFile().Bytes()), reference),
                 {kNotSupported, "BrefDOQQ::Read", "This version of Read is not yet supported"});
    for (const BReferenceFormat& format : BReferenceFormats::List())
        EXPECT_FALSE(format.Name == BString("DOQ") && format.ReadsByType);
}

}  // namespace
}  // namespace MapAnchor
