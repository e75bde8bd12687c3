#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace MapAnchor {

/// A file of the disk with changes that are kept in memory. Whoever reads it sees the
/// changes; the disk does not. The changes cost memory, the rest of the file does not.
/// Offsets are bytes from the start. Not for use by two threads at once.
class StagedFile {
public:
    enum class Access { Read, Update };

    /// A stretch of changed bytes within the old length.
    struct Change {
        std::uint64_t offset = 0;
        std::string bytes;
    };

    /// The regular file at `path`. Null with errno set when it cannot be opened for
    /// `access`, and for anything that is not a regular file.
    static std::unique_ptr<StagedFile> Open(const std::string& path, Access access);
    /// A file that does not exist on the disk.
    static std::unique_ptr<StagedFile> Make(const std::string& path);
    ~StagedFile();
    StagedFile(const StagedFile&) = delete;
    StagedFile& operator=(const StagedFile&) = delete;

    const std::string& Path() const { return path_; }
    std::uint64_t Length() const { return length_; }
    /// As it was on the disk when it was opened.
    std::uint64_t OldLength() const { return old_length_; }
    bool IsOnDisk() const { return descriptor_ >= 0; }
    /// False when the file on the disk was changed by somebody else since it was opened.
    bool IsAsOpened() const;
    /// Open for reading, or for both; -1 for a file that is not on the disk.
    int Descriptor() const { return descriptor_; }

    /// The count of bytes that were read, less than asked for at the end only.
    std::size_t ReadAt(std::uint64_t offset, std::span<char> out) const;
    /// The bytes from `offset`, as many as there are up to `count`.
    std::string Bytes(std::uint64_t offset, std::size_t count) const;
    void WriteAt(std::uint64_t offset, std::span<const char> bytes);
    void Truncate(std::uint64_t length);
    /// Reads these bytes now, so that reading them later cannot fail. They cost memory.
    void KeepInMemory(std::uint64_t offset, std::uint64_t count);

    /// True when a write or a change of the length was asked for.
    bool IsTouched() const { return touched_; }
    /// False when the file was cut within its old length.
    bool KeepsOldLength() const { return valid_ == old_length_; }
    /// The errno of the first read that the disk failed; 0 without one. What was staged
    /// after that cannot be trusted.
    int ReadFailure() const { return read_failure_; }
    /// Which bytes within the old length differ from the disk, by offset. Neighbouring
    /// ones are one change.
    std::vector<Change> ChangesWithinOldLength() const;

private:
    static constexpr std::size_t kPage = 4096;
    static constexpr std::size_t kCompared = 256;
    using Page = std::array<char, kPage>;

    StagedFile(std::string path, int descriptor, std::uint64_t length, std::int64_t changed_at)
        : path_(std::move(path)),
          descriptor_(descriptor),
          changed_at_(changed_at),
          old_length_(length),
          valid_(length),
          length_(length) {}
    std::size_t ReadDisk(std::uint64_t offset, std::span<char> out) const;
    bool ReadRecent(std::uint64_t offset, std::span<char> out) const;
    Page& PageInMemory(std::uint64_t number);

    std::string path_;
    int descriptor_;
    std::int64_t changed_at_;  ///< nanoseconds since 1970
    std::uint64_t old_length_;
    std::uint64_t valid_;  ///< the disk's bytes before this offset still count
    std::uint64_t length_;
    bool touched_ = false;
    mutable int read_failure_ = 0;
    std::map<std::uint64_t, std::unique_ptr<Page>> pages_;
    /// What the disk holds where a small piece was read last: a directory is read in many.
    mutable std::unique_ptr<Page> recent_;
    mutable std::uint64_t recent_number_ = 0;
};

}  // namespace MapAnchor
