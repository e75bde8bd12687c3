#include "load/FileWindow.h"

#include <Tellurion/RegularFile.h>

#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <utility>

namespace VellumLib {

namespace {

// Parsers look back a little before the place they jump to, and may go on from there or
// jump again.
constexpr std::int64_t kLookBack = std::int64_t{2} * 1024;
constexpr std::int64_t kJump = std::int64_t{8} * 1024;

}  // namespace

FileWindow::FileWindow(const std::string& path) {
    struct stat status;
    descriptor_ = Tellurion::OpenRegularFile(path.c_str(), &status);
    if (IsOpen()) size_ = status.st_size;
}

FileWindow::~FileWindow() {
    if (IsOpen()) close(descriptor_);
}

int FileWindow::Fetch(std::int64_t position) {
    if (position < 0 || position >= Size()) return -1;
    const std::int64_t end = current_->End();
    std::swap(current_, other_);
    if (current_->Holds(position)) return current_->At(position);
    const auto full = static_cast<std::int64_t>(current_->bytes.size());
    const bool onward = end > 0 && position >= end && position < end + full;
    const std::int64_t width = onward ? full : kJump;
    current_->start =
        position == end ? end : std::max<std::int64_t>(0, std::min(position - kLookBack, Size() - width));
    current_->filled = 0;
    while (current_->filled < width) {
        const std::int64_t got =
            FillFrom(current_->End(), current_->bytes.data() + current_->filled, width - current_->filled);
        if (got <= 0) break;
        current_->filled += got;
    }
    return current_->Holds(position) ? current_->At(position) : -1;
}

std::int64_t FileWindow::FillFrom(std::int64_t position, unsigned char* target, std::int64_t count) {
    const auto wanted = static_cast<std::size_t>(std::min(count, size_ - position));
    ssize_t got = -1;
    do
        got = pread(descriptor_, target, wanted, position);
    while (got < 0 && errno == EINTR);
    return got;
}

std::size_t FileWindow::Read(std::int64_t position, char* target, std::size_t count) {
    std::size_t done = 0;
    while (done < count && At(position) >= 0) {
        const std::size_t piece =
            std::min(count - done, static_cast<std::size_t>(current_->End() - position));
        std::copy_n(current_->bytes.data() + (position - current_->start), piece, target + done);
        done += piece;
        position += static_cast<std::int64_t>(piece);
    }
    return done;
}

}  // namespace VellumLib
