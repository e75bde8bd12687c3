#pragma once

#include <Tellurion/BString.h>

#include <cstdint>
#include <span>
#include <string>

namespace MapAnchor {

/// A regular file that is read here and there. No more is read than is asked for, and
/// nothing beyond the size that the file had when it was opened, so the cost does not
/// grow with the file.
class FileSource {
public:
    FileSource() = default;
    ~FileSource();
    FileSource(FileSource&& other) noexcept;
    FileSource& operator=(FileSource&& other) noexcept;

    /// False for what is missing, not readable or no regular file.
    bool Open(const Tellurion::BString& path);
    bool IsOpen() const { return descriptor_ >= 0; }
    std::uint64_t Size() const { return size_; }

    /// Fills `out` with the bytes at `offset`; how many there were.
    std::size_t ReadAt(std::uint64_t offset, std::span<char> out) const;
    /// At most `count` bytes at `offset`. What is allocated is bounded by what the file has.
    std::string Window(std::uint64_t offset, std::size_t count) const;

private:
    void Close();

    int descriptor_ = -1;
    std::uint64_t size_ = 0;
};

}  // namespace MapAnchor
