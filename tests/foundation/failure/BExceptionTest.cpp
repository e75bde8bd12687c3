#include <Tellurion/BCoordSysException.h>
#include <Tellurion/BFileNotFoundException.h>

#include <gtest/gtest.h>

namespace Tellurion {

TEST(BException, JoinsMessageDetailAndSourceInCopiesToo) {
    const BCoordSysException original("Message.", "BRefX::Read", "Detail <\xC3\xA4>");
    EXPECT_STREQ(BCoordSysException(original).what(), "Message. Detail <\xC3\xA4> (BRefX::Read)");
    // Two arguments are the source and the detail.
    const BFileNotFoundException two("BMapAnchor::Read", "No file specified.");
    EXPECT_STREQ(two.what(), "No file specified. (BMapAnchor::Read)");
    EXPECT_TRUE(two.GetMessageText().IsEmpty());
    EXPECT_STREQ(BException("alone").what(), "alone");
}

}  // namespace Tellurion
