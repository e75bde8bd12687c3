#include <Tellurion/RandomAccessFile.h>

#include <Tellurion/FileBytes.h>
#include <Tellurion/RegularFile.h>

#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <utility>

namespace Tellurion {
namespace {

constexpr std::size_t kWindow = 4096;

}  // namespace

RandomAccessFile::~RandomAccessFile() {
    Close();
}

RandomAccessFile::RandomAccessFile(RandomAccessFile&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)),
      size_(std::exchange(other.size_, 0)),
      window_start_(other.window_start_),
      window_(std::move(other.window_)) {}

RandomAccessFile& RandomAccessFile::operator=(RandomAccessFile&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    std::swap(size_, other.size_);
    std::swap(window_start_, other.window_start_);
    window_.swap(other.window_);
    return *this;
}

bool RandomAccessFile::Open(const BString& path) {
    Close();
    if (path.GetUnits().find(u'\0') != std::u16string::npos) return false;
    struct stat status;
    descriptor_ = OpenRegularFile(path.Ascii(), &status);
    if (!IsOpen()) return false;
    size_ = static_cast<std::uint64_t>(std::max<off_t>(status.st_size, 0));
    return true;
}

void RandomAccessFile::Close() {
    if (IsOpen()) ::close(descriptor_);
    descriptor_ = -1;
    size_ = 0;
    window_.clear();
}

std::size_t RandomAccessFile::ReadAt(std::uint64_t offset, std::span<char> out) const {
    return FileBytes::ReadAt(descriptor_, out, offset);
}

std::string RandomAccessFile::Window(std::uint64_t offset, std::size_t count) const {
    if (offset >= size_) return {};
    std::string bytes(static_cast<std::size_t>(std::min<std::uint64_t>(count, size_ - offset)), '\0');
    bytes.resize(ReadAt(offset, bytes));
    return bytes;
}

bool RandomAccessFile::Holds(std::uint64_t offset, std::size_t count) const {
    return offset >= window_start_ && offset - window_start_ <= window_.size() &&
           count <= window_.size() - (offset - window_start_);
}

std::string_view RandomAccessFile::Read(std::uint64_t offset, std::size_t count) {
    if (offset >= size_) return {};
    count = static_cast<std::size_t>(std::min<std::uint64_t>(count, size_ - offset));
    if (!Holds(offset, count)) {
        window_ = Window(offset, std::max(count, kWindow));
        window_start_ = offset;
    }
    return std::string_view(window_).substr(static_cast<std::size_t>(offset - window_start_), count);
}

}  // namespace Tellurion
