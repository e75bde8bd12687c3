#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

namespace VellumLib {

/// A file read through one window that stays where it is until a byte outside of it
/// is asked for. Reading is positional, so that a file that another process cuts
/// short ends early instead of ending the process.
class FileWindow {
public:
    /// `path` names the file; IsOpen() is false where it cannot be opened.
    explicit FileWindow(const std::string& path);
    ~FileWindow();
    FileWindow(const FileWindow&) = delete;
    FileWindow& operator=(const FileWindow&) = delete;

    bool IsOpen() const { return descriptor_ >= 0; }
    /// The length that the file had when it was opened, and of what was appended.
    std::int64_t Size() const { return size_ + static_cast<std::int64_t>(appendix_.size()); }
    /// Goes on behind the end of the file as if `text` stood there.
    void Append(std::string text) { appendix_ = std::move(text); }

    /// The byte at `position`, -1 behind the end.
    int At(std::int64_t position) {
        const std::int64_t index = position - start_;
        if (index >= 0 && index < filled_) return window_[static_cast<std::size_t>(index)];
        return Fetch(position);
    }
    /// Copies up to `count` bytes and says how many there were.
    std::size_t Read(std::int64_t position, char* target, std::size_t count);

private:
    int Fetch(std::int64_t position);
    std::int64_t FillFrom(std::int64_t position, unsigned char* target, std::int64_t count);

    int descriptor_ = -1;
    std::int64_t size_ = 0;
    std::string appendix_;
    std::int64_t start_ = 0;
    std::int64_t filled_ = 0;
    std::array<unsigned char, 32 * 1024> window_;
};

}  // namespace VellumLib
