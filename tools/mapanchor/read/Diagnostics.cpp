#include "read/Diagnostics.h"
#include "read/RemarkIds.h"

#include <Tellurion/BLogger.h>

#include <algorithm>
#include <utility>

namespace Tool {

bool AreDoubtful(const Diagnostics& diagnostics) {
    return std::any_of(diagnostics.begin(), diagnostics.end(),
                       [](const Diagnostic& remark) { return !remark.is_note; });
}

LogCollector::LogCollector() {
    Tellurion::BLogger::Instance()->SetSink([this](Tellurion::ELogSeverity, const Tellurion::BString& text) {
        lines_.push_back(text.StdStr());
        std::replace(lines_.back().begin(), lines_.back().end(), '\n',
                     ' ');  // those of the library's formats
    });
}

LogCollector::~LogCollector() {
    Tellurion::BLogger::Instance()->SetSink({});
}

void LogCollector::MoveTo(Diagnostics& diagnostics, const Failure* failure) {
    for (std::string& line : lines_)
        if (!failure || failure->detail.empty() || line.find(failure->detail) == std::string::npos)
            diagnostics.push_back({failure != nullptr, std::move(line), RemarkId::kReadRemark});
    lines_.clear();
}

}  // namespace Tool
