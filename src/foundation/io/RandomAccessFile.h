#pragma once

#include <Tellurion/BString.h>
#include <Tellurion/Export.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace Tellurion {

/// A regular file that is read here and there, never as a whole and never beyond the
/// size that it had when it was opened. Not for two threads at once.
class TELLURION_EXPORT RandomAccessFile {
public:
    RandomAccessFile() = default;
    explicit RandomAccessFile(const BString& path) { Open(path); }
    ~RandomAccessFile();
    RandomAccessFile(RandomAccessFile&& other) noexcept;
    RandomAccessFile& operator=(RandomAccessFile&& other) noexcept;

    /// False for what is missing, not readable or no regular file.
    bool Open(const BString& path);
    bool IsOpen() const { return descriptor_ >= 0; }
    std::uint64_t Size() const { return size_; }

    /// The bytes from `offset` on, `count` of them or as many as the file has there, and
    /// so much is allocated at most.
    std::string Window(std::uint64_t offset, std::size_t count) const;
    /// The same as a view that holds until the next call. A few KiB are kept, so that
    /// neighbouring reads cost one system call.
    std::string_view Read(std::uint64_t offset, std::size_t count);

    /// Copies the bytes from `offset` on into `out`; how many there were.
    std::size_t ReadAt(std::uint64_t offset, std::span<char> out) const;

private:
    bool Holds(std::uint64_t offset, std::size_t count) const;
    void Close();

    int descriptor_ = -1;
    std::uint64_t size_ = 0;
    std::uint64_t window_start_ = 0;
    std::string window_;
};

}  // namespace Tellurion
