#include "common/RandomAccessFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>

namespace MapAnchor {
namespace {

constexpr std::size_t kWindow = 4096;

/// pread(2) that goes on after a signal and after a part; negative on failure.
ssize_t ReadAt(int descriptor, char* buffer, std::size_t count, std::uint64_t offset) {
    std::size_t done = 0;
    while (done < count) {
        const ssize_t got = ::pread(descriptor, buffer + done, count - done,
                                    static_cast<off_t>(offset + static_cast<std::uint64_t>(done)));
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return -1;
        if (got == 0) break;
        done += static_cast<std::size_t>(got);
    }
    return static_cast<ssize_t>(done);
}

}  // namespace

RandomAccessFile::RandomAccessFile(const Tellurion::BString& path) {
    if (path.GetUnits().find(u'\0') != std::u16string::npos) return;
    descriptor_ = ::open(path.Ascii(), O_RDONLY | O_CLOEXEC);
    if (!IsOpen()) return;
    struct stat status;
    // A folder opens and fails at the first read: read now, and tell it at the door.
    if (::fstat(descriptor_, &status) != 0 || !Fill(0, 0)) {
        Close();
        return;
    }
    size_ = static_cast<std::uint64_t>(std::max<off_t>(status.st_size, 0));
}

RandomAccessFile::~RandomAccessFile() {
    Close();
}

void RandomAccessFile::Close() {
    if (IsOpen()) ::close(descriptor_);
    descriptor_ = -1;
}

bool RandomAccessFile::Holds(std::uint64_t offset, std::size_t count) const {
    return offset >= window_start_ && offset - window_start_ <= window_.size() &&
           count <= window_.size() - (offset - window_start_);
}

bool RandomAccessFile::Fill(std::uint64_t offset, std::size_t count) {
    window_start_ = offset;
    window_.resize(std::max(count, kWindow));
    const ssize_t got = ReadAt(descriptor_, window_.data(), window_.size(), offset);
    window_.resize(static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
    return got >= 0;
}

std::string_view RandomAccessFile::Read(std::uint64_t offset, std::size_t count) {
    if (!IsOpen() || offset >= size_) return {};
    count = static_cast<std::size_t>(std::min<std::uint64_t>(count, size_ - offset));
    if (!Holds(offset, count)) Fill(offset, count);
    const std::string_view window(window_);
    return window.substr(std::min(static_cast<std::size_t>(offset - window_start_), window.size()), count);
}

}  // namespace MapAnchor
