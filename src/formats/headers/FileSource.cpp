#include "headers/FileSource.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <utility>

namespace MapAnchor {

FileSource::~FileSource() {
    Close();
}

FileSource::FileSource(FileSource&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)), size_(std::exchange(other.size_, 0)) {}

FileSource& FileSource::operator=(FileSource&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    std::swap(size_, other.size_);
    return *this;
}

bool FileSource::Open(const Tellurion::BString& path) {
    Close();
    if (path.GetUnits().find(u'\0') != std::u16string::npos) return false;
    // Opening a pipe would wait for its other end.
    descriptor_ = ::open(path.Ascii(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    struct stat status;
    if (descriptor_ < 0 || ::fstat(descriptor_, &status) != 0 || !S_ISREG(status.st_mode)) {
        Close();
        return false;
    }
    size_ = static_cast<std::uint64_t>(std::max<off_t>(status.st_size, 0));
    return true;
}

void FileSource::Close() {
    if (descriptor_ >= 0) ::close(descriptor_);
    descriptor_ = -1;
    size_ = 0;
}

std::size_t FileSource::ReadAt(std::uint64_t offset, std::span<char> out) const {
    if (offset >= size_) return 0;
    out = out.first(static_cast<std::size_t>(std::min<std::uint64_t>(out.size(), size_ - offset)));
    std::size_t done = 0;
    while (done < out.size()) {
        const ssize_t got =
            ::pread(descriptor_, out.data() + done, out.size() - done, static_cast<off_t>(offset + done));
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) break;
        done += static_cast<std::size_t>(got);
    }
    return done;
}

std::string FileSource::Window(std::uint64_t offset, std::size_t count) const {
    if (offset >= size_) return {};
    std::string bytes(static_cast<std::size_t>(std::min<std::uint64_t>(count, size_ - offset)), '\0');
    bytes.resize(ReadAt(offset, bytes));
    return bytes;
}

}  // namespace MapAnchor
