#include "read/Diagnostics.h"

#include <Tellurion/BLogger.h>

#include <algorithm>
#include <utility>

namespace {

/// The id with which the library begins a remark on a PDF, such as "pdf-units: ..."; else empty.
std::string IdOf(const std::string& line) {
    if (line.rfind("pdf-", 0) != 0) return {};
    const std::size_t end = line.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789-");
    return end != std::string::npos && line.compare(end, 2, ": ") == 0 ? line.substr(0, end) : std::string();
}

}  // namespace

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

void LogCollector::MoveTo(Diagnostics& diagnostics, bool as_errors) {
    for (std::string& line : lines_) {
        const std::string id = IdOf(line);
        if (!id.empty()) line.erase(0, id.size() + 2);
        diagnostics.push_back({as_errors, std::move(line), id});
    }
    lines_.clear();
}
