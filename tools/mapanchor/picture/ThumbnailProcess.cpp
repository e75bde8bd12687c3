#include "picture/ThumbnailProcess.h"

#include <MapAnchor/BThumbnail.h>

#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <string_view>

namespace Tool {

namespace {

constexpr int kMaxSeconds = 8;
constexpr char kMade = '+';  // begins an answer that is a picture
constexpr char kFailed = '-';

void Limit(int resource, rlim_t most) {
    rlimit limit{};
    if (getrlimit(static_cast<__rlimit_resource_t>(resource), &limit) != 0) return;
    limit.rlim_cur = std::min(limit.rlim_cur, most);
    setrlimit(static_cast<__rlimit_resource_t>(resource), &limit);
}

void LimitThisProcess() {
    Limit(RLIMIT_CORE, 0);
    Limit(RLIMIT_CPU, kMaxSeconds);
#ifndef MAPANCHOR_HAS_SANITIZERS  // which reserve far more
    constexpr rlim_t kMaxBytes = rlim_t{2} << 30;
    Limit(RLIMIT_DATA, kMaxBytes);
#endif
}

void WriteAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
}

[[noreturn]] void RunChild(int descriptor, const std::string& raster, int max_width, int max_height) {
    LimitThisProcess();
    std::string answer;
    try {
        const auto made = MapAnchor::BThumbnail::Of(Tellurion::BString(raster), max_width, max_height);
        answer = made.HasPicture() ? kMade + made.GetPng() : kFailed + made.GetFailureText().StdStr();
    } catch (...) {  // no exception may leave this process by the parent's frames
        answer = std::string(1, kFailed) + "it cannot be read";
    }
    WriteAll(descriptor, answer);
    _exit(EXIT_SUCCESS);
}

/// What the child writes until it ends; false when that takes too long or is too much.
bool ReadAll(int descriptor, std::string& answer) {
    using Clock = std::chrono::steady_clock;
    constexpr std::size_t kMaxAnswer = std::size_t{16} << 20;
    const auto end = Clock::now() + std::chrono::seconds(kMaxSeconds);
    std::array<char, 1 << 16> buffer{};
    while (answer.size() <= kMaxAnswer) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
        pollfd wait{descriptor, POLLIN, 0};
        const int ready = left > 0 ? poll(&wait, 1, static_cast<int>(left)) : 0;
        if (ready < 0 && errno == EINTR) continue;
        if (ready <= 0) return false;
        const ssize_t count = read(descriptor, buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return count == 0;
        answer.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return false;
}

}  // namespace

ThumbnailAnswer MakeThumbnail(const std::string& raster, int max_width, int max_height) {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0) return {{}, "no process can be started for it"};
    const pid_t child = fork();
    if (child == 0) {
        close(ends[0]);
        RunChild(ends[1], raster, max_width, max_height);
    }
    close(ends[1]);
    std::string answer;
    const bool is_whole = child > 0 && ReadAll(ends[0], answer);
    close(ends[0]);
    if (child < 0) return {{}, "no process can be started for it"};
    if (!is_whole) kill(child, SIGKILL);
    while (waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
    if (!is_whole) return {{}, "reading its pixels takes too long"};
    if (answer.empty()) return {{}, "GDAL does not survive reading its pixels"};
    if (answer.front() == kMade) return {answer.substr(1), {}};
    return {{}, answer.substr(1)};
}

}  // namespace Tool
