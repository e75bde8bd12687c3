#include "batch/Progress.h"

#include <Tellurion/Numbers.h>

#include <algorithm>
#include <cstdio>
#include <string>

namespace Tool {

namespace {

using Seconds = std::chrono::duration<double>;

std::string Duration(double seconds) {
    constexpr double kMinute = 60.0;
    constexpr double kHour = 3600.0;
    if (seconds < kMinute) return Tellurion::PrintFixed(seconds, 0) + " s";
    if (seconds < kHour) return Tellurion::PrintFixed(seconds / kMinute, 0) + " min";
    return Tellurion::PrintFixed(seconds / kHour, 1) + " h";
}

}  // namespace

Progress::~Progress() {
    if (is_line_open_) std::fputs("\n", stderr);
}

void Progress::Count(bool failed) {
    ++done_;
    if (failed) ++failed_;
}

void Progress::Tell(std::optional<std::size_t> left, bool at_end) {
    const auto now = Clock::now();
    const Seconds pause(is_terminal_ ? 0.2 : 5.0);
    if (!wanted_ || (!at_end && now - last_ < pause)) return;
    last_ = now;
    const double rate = static_cast<double>(done_) / std::max(Seconds(now - begin_).count(), 1e-3);
    std::string line = std::to_string(done_);
    if (left) line += " of " + std::to_string(done_ + *left);
    line += " files, " + std::to_string(failed_) + " failed, " + Tellurion::PrintFixed(rate, 0) + " a second";
    if (left && *left > 0 && done_ > 0) line += ", " + Duration(static_cast<double>(*left) / rate) + " left";
    line = is_terminal_ ? "\r\x1b[K" + line : line + "\n";
    is_line_open_ = is_terminal_;
    std::fputs(line.c_str(), stderr);
}

}  // namespace Tool
