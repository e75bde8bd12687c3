#include "objects/FileWindow.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>

namespace VellumLib {

namespace {

// Parsers look back a little before the place they jump to.
constexpr std::int64_t kLookBack = 8 * 1024;

std::int64_t SizeOf(int descriptor) {
    struct stat status;
    return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) ? status.st_size : 0;
}

}  // namespace

// A pipe has no positions to read from: it is opened without waiting and is empty.
FileWindow::FileWindow(const std::string& path)
    : descriptor_(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
    if (IsOpen()) size_ = SizeOf(descriptor_);
}

FileWindow::~FileWindow() {
    if (IsOpen()) close(descriptor_);
}

int FileWindow::Fetch(std::int64_t position) {
    if (position < 0 || position >= Size()) return -1;
    const auto width = static_cast<std::int64_t>(window_.size());
    // Forward reading goes on at the position itself, a jump keeps a piece before it.
    const bool onward = position == start_ + filled_;
    start_ = onward ? position : std::max<std::int64_t>(0, std::min(position - kLookBack, Size() - width));
    filled_ = 0;
    while (filled_ < width) {
        const std::int64_t got = FillFrom(start_ + filled_, window_.data() + filled_, width - filled_);
        if (got <= 0) break;
        filled_ += got;
    }
    const std::int64_t index = position - start_;
    return index < filled_ ? window_[static_cast<std::size_t>(index)] : -1;
}

std::int64_t FileWindow::FillFrom(std::int64_t position, unsigned char* target, std::int64_t count) {
    if (position >= size_) {
        const auto begin = static_cast<std::size_t>(position - size_);
        if (begin >= appendix_.size()) return 0;
        const std::size_t piece = std::min(appendix_.size() - begin, static_cast<std::size_t>(count));
        std::copy_n(appendix_.data() + begin, piece, target);
        return static_cast<std::int64_t>(piece);
    }
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
        const std::int64_t index = position - start_;
        const std::size_t piece = std::min(count - done, static_cast<std::size_t>(filled_ - index));
        std::copy_n(window_.data() + index, piece, target + done);
        done += piece;
        position += static_cast<std::int64_t>(piece);
    }
    return done;
}

}  // namespace VellumLib
