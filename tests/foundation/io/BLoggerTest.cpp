#include <Tellurion/BLogger.h>

#include <gtest/gtest.h>

#include "LogCapture.h"

namespace Tellurion {

TEST(BLogger, NoTextBeginsALineOfItsOwn) {
    LogCapture log;
    const std::string forged = "x\nBRefWLD::Read fine\x1B\xFF";
    BLogger::Instance()->WriteLine(ELogSeverity::Error, "<%ls>\n%s%ls", BString(forged), forged, L"\u202E");
    BLogger::Instance()->Write(ELogSeverity::Error, forged);
    const std::string escaped = R"(x\nBRefWLD::Read fine\x1b\xff)";
    EXPECT_EQ(log.lines, (std::vector<std::string>{"<" + escaped + ">\n" + escaped + "\\u202e", escaped}));
}

TEST(BLogger, WritesToItsSinkOrToStandardError) {
    testing::internal::CaptureStderr();
    BLogger::Instance()->Write(ELogSeverity::Error, "to the terminal");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "to the terminal\n");
    const LogCapture log;
    BLogger::Instance()->WriteLine(ELogSeverity::Error, "<%ls> %d\n%s", BString("m\xC3\xA4p"), 3, "why");
    EXPECT_EQ(log.lines, std::vector<std::string>{"<m\xC3\xA4p> 3\nwhy"});
    EXPECT_EQ(log.severities, std::vector<int>{3});
}

}  // namespace Tellurion
