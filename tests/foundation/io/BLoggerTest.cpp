#include <Tellurion/BLogger.h>

#include <gtest/gtest.h>

#include "LogCapture.h"

namespace Tellurion {
namespace {

TEST(BLogger, TheSinkGetsSeverityAndText) {
    LogCapture log;
    BLogger::Instance()->WriteLine(ELogSeverity::Error, "Failed <%ls> %d\n%s", BString("m\xC3\xA4p"), 3,
                                   "why");
    ASSERT_EQ(log.lines.size(), 1U);
    EXPECT_EQ(log.lines[0], "Failed <m\xC3\xA4p> 3\nwhy");
    EXPECT_EQ(log.severities[0], 3);
}

TEST(BLogger, WithoutASinkOfItsOwnALineGoesToStandardError) {
    testing::internal::CaptureStderr();
    BLogger::Instance()->Write(ELogSeverity::Error, "to the terminal");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "to the terminal\n");
    const BLogger::Sink before = BLogger::Instance()->SetSink([](ELogSeverity, const BString&) {});
    EXPECT_FALSE(before);
    EXPECT_TRUE(BLogger::Instance()->SetSink(before));
}

}  // namespace
}  // namespace Tellurion
