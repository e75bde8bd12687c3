#pragma once

#include <Tellurion/RandomAccessFile.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace VellumLib {

/// A file read through two windows, of which the older one moves when a byte outside of
/// both is asked for: a parser goes to and fro between a table and what it leads to.
/// Reading is positional, so that a file that another process cuts short ends early
/// instead of ending the process.
class FileWindow {
public:
    /// `path` names the file; IsOpen() is false where it cannot be opened or is not
    /// a regular file.
    explicit FileWindow(const std::string& path);
    FileWindow(const FileWindow&) = delete;
    FileWindow& operator=(const FileWindow&) = delete;

    bool IsOpen() const { return file_.IsOpen(); }
    /// The length that the file had when it was opened.
    std::int64_t Size() const { return static_cast<std::int64_t>(file_.Size()); }

    /// The byte at `position`, -1 behind the end.
    int At(std::int64_t position) {
        return current_->Holds(position) ? current_->At(position) : Fetch(position);
    }
    /// Copies up to `count` bytes and says how many there were.
    std::size_t Read(std::int64_t position, char* target, std::size_t count);

private:
    struct Window {
        std::int64_t start = 0;
        std::int64_t filled = 0;
        std::array<char, std::size_t{32} * 1024> bytes;

        std::int64_t End() const { return start + filled; }
        bool Holds(std::int64_t position) const { return position >= start && position < End(); }
        int At(std::int64_t position) const {
            return static_cast<unsigned char>(bytes[static_cast<std::size_t>(position - start)]);
        }
    };

    int Fetch(std::int64_t position);

    Tellurion::RandomAccessFile file_;
    Window windows_[2];
    Window* current_ = &windows_[0];
    Window* other_ = &windows_[1];
};

}  // namespace VellumLib
