#include <Tellurion/BCoordSysException.h>
#include <Tellurion/BFileNotFoundException.h>

#include <gtest/gtest.h>

namespace Tellurion {
namespace {

TEST(BException, KeepsItsPartsThroughCopies) {
    const BCoordSysException original("Message.", "BRefX::Read", "Detail <\xC3\xA4>");
    const BCoordSysException copy(original);
    EXPECT_EQ(copy.GetMessageText(), BString("Message."));
    EXPECT_EQ(copy.GetSource(), BString("BRefX::Read"));
    EXPECT_EQ(copy.GetDetail(), BString("Detail <\xC3\xA4>"));
    EXPECT_STREQ(copy.what(), "Message. Detail <\xC3\xA4> (BRefX::Read)");
    EXPECT_EQ(copy.GetDetailedMessage(), BString("Message. Detail <\xC3\xA4> (BRefX::Read)"));
}

TEST(BException, TwoArgumentsAreSourceAndDetail) {
    try {
        throw BFileNotFoundException("BMapAnchor::Read", "No file specified.");
    } catch (const BException& error) {
        EXPECT_STREQ(error.what(), "No file specified. (BMapAnchor::Read)");
        EXPECT_STREQ(error.GetTypeName(), "BFileNotFoundException");
        EXPECT_TRUE(error.GetMessageText().IsEmpty());
    }
    EXPECT_STREQ(BException("alone").what(), "alone");
}

}  // namespace
}  // namespace Tellurion
