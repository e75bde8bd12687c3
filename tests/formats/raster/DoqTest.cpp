// Digital orthophoto quarter quadrangles: the header over the first lines.

#include "ChartFiles.h"
#include "Reading.h"

namespace MapAnchor {
namespace {

using namespace Tellurion;

TEST(Doq, ReadsTheOriginAsStatedAndNad27ByNameAlone) {
    const TempFolder folder;
    const LogCapture log;
    const std::string file = folder.Write("quad.doq", DoqFile().Bytes());
    EXPECT_EQ(ReadByName(file).kind, "DOQ");
    EXPECT_EQ(References::Terms(Good(file)), (Six{1.5, 0, 500000.125, 0, -2.5, 4123456.75}));
    BGeoReference reference;
    ExpectThrown(Roads::Read(EReferenceType::DOQQ, file, reference), kNotSupported, "BrefDOQQ::Read",
                 "This version of Read is not yet supported");
    EXPECT_TRUE(log.lines.empty());
}

TEST(Doq, ReadsHeadersInAllTheirForms) {
    const TempFolder folder;
    const LogCapture log;
    // The system, and x of the origin: 0 for no transform.
    const auto expect = [&](const char* system, double x, const std::string& content) {
        BGeoReference reference;
        EXPECT_EQ(Roads::Read(folder.Write("quad.DOQ", content), reference).type,
                  system == std::string("none") && x == 0 ? kNoReference : "");
        EXPECT_EQ(CodeOf(reference), system);
        ASSERT_EQ(reference.HasMathTransform(), x != 0.0);
        EXPECT_EQ(x != 0.0 ? References::Terms(reference)[2] : 0.0, x);
    };
    const char* const utm12 = "EPSG:26712";
    expect(utm12, 500000.125, DoqFile{.line = 0}.Bytes());
    expect(utm12, 500000.125, DoqFile{.line = 999999}.Bytes());
    // Any character in the exponent's place is overwritten, a digit too.
    expect(utm12, 50000.125, DoqFile{.x = "       50000.12500000000"}.Bytes());
    expect(utm12, 0.5, DoqFile{.x = "  0.5D+06               "}.Bytes());
    expect("EPSG:26713", 500000.125, DoqFile{.zone = "Z 1 3 "}.Bytes());
    expect("none", 500000.125, DoqFile{.zone = "      "}.Bytes());
    expect("none", 500000.125, DoqFile{.zone = "999999"}.Bytes());
    expect(utm12, 0, DoqFile{.x_size = "         0.0"}.Bytes());
    expect(utm12, 0, DoqFile{.y_size = "   unknown  "}.Bytes());
    expect(utm12, 0, DoqFile{.x = "   9.900000000000000D999"}.Bytes());
    // Cut before the zone, and before the pixel size.
    expect("none", 0, DoqFile().Bytes().substr(0, 198));
    expect(utm12, 0, DoqFile().Bytes().substr(0, 3 * 400 + 59));
}

}  // namespace
}  // namespace MapAnchor
