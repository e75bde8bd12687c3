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
    if (position < 0 || position >= size_) return -1;
    const auto width = static_cast<std::int64_t>(window_.size());
    // Forward reading goes on at the position itself, a jump keeps a piece before it.
    const bool onward = position == start_ + filled_;
    start_ = onward ? position : std::max<std::int64_t>(0, std::min(position - kLookBack, size_ - width));
    filled_ = 0;
    while (filled_ < width) {
        const ssize_t got = pread(descriptor_, window_.data() + filled_,
                                  static_cast<std::size_t>(width - filled_), start_ + filled_);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) break;
        filled_ += got;
    }
    const std::int64_t index = position - start_;
    return index < filled_ ? window_[static_cast<std::size_t>(index)] : -1;
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
