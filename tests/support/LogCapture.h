#pragma once

#include <Tellurion/BLogger.h>

#include <string>
#include <vector>

/// Collects what the library logs while it lives, in place of stderr.
class LogCapture {
public:
    LogCapture() {
        previous_ = Tellurion::BLogger::Instance()->SetSink(
            [this](Tellurion::ELogSeverity severity, const Tellurion::BString& text) {
                severities.push_back(static_cast<int>(severity));
                lines.push_back(text.StdStr());
            });
    }
    ~LogCapture() { Tellurion::BLogger::Instance()->SetSink(previous_); }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    std::vector<std::string> lines;
    std::vector<int> severities;

private:
    Tellurion::BLogger::Sink previous_;
};
