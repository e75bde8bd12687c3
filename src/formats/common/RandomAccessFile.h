#pragma once

#include <Tellurion/BString.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace MapAnchor {

/// A file that is read here and there, never as a whole. A window of a few KiB is
/// kept, so that neighbouring reads cost one system call. Not for two threads at once.
class RandomAccessFile {
public:
    explicit RandomAccessFile(const Tellurion::BString& path);
    ~RandomAccessFile();
    RandomAccessFile(const RandomAccessFile&) = delete;
    RandomAccessFile& operator=(const RandomAccessFile&) = delete;

    /// False for a missing file, a folder, or no permission.
    bool IsOpen() const { return descriptor_ >= 0; }
    std::uint64_t Size() const { return size_; }

    /// The bytes from `offset` on, `count` of them or as many as the file has there.
    /// The view holds until the next call.
    std::string_view Read(std::uint64_t offset, std::size_t count);

private:
    bool Holds(std::uint64_t offset, std::size_t count) const;
    bool Fill(std::uint64_t offset, std::size_t count);
    void Close();

    int descriptor_ = -1;
    std::uint64_t size_ = 0;
    std::uint64_t window_start_ = 0;
    std::string window_;
};

}  // namespace MapAnchor
