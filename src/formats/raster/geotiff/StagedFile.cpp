#include "raster/geotiff/StagedFile.h"

#include <Tellurion/FileBytes.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace MapAnchor {
namespace {

std::uint64_t LengthOf(const struct stat& status) {
    return static_cast<std::uint64_t>(std::max<off_t>(status.st_size, 0));
}

std::int64_t TimeOfChange(const struct stat& status) {
    return std::int64_t{status.st_mtim.tv_sec} * 1'000'000'000 + status.st_mtim.tv_nsec;
}

}  // namespace

std::unique_ptr<StagedFile> StagedFile::Open(const std::string& path, Access access) {
    // Without O_NONBLOCK, opening a pipe would wait for its other end.
    const int flags = (access == Access::Update ? O_RDWR : O_RDONLY) | O_CLOEXEC | O_NONBLOCK;
    const int descriptor = ::open(path.c_str(), flags);
    if (descriptor < 0) return nullptr;
    struct stat status {};
    if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) {
        ::close(descriptor);
        errno = EINVAL;
        return nullptr;
    }
    return std::unique_ptr<StagedFile>(
        new StagedFile(path, descriptor, LengthOf(status), TimeOfChange(status)));
}

std::unique_ptr<StagedFile> StagedFile::Make(const std::string& path) {
    std::unique_ptr<StagedFile> made(new StagedFile(path, -1, 0, 0));
    made->touched_ = true;
    return made;
}

StagedFile::~StagedFile() {
    if (descriptor_ >= 0) ::close(descriptor_);
}

bool StagedFile::IsAsOpened() const {
    struct stat status {};
    return descriptor_ < 0 || (::fstat(descriptor_, &status) == 0 && LengthOf(status) == old_length_ &&
                               TimeOfChange(status) == changed_at_);
}

std::size_t StagedFile::ReadDisk(std::uint64_t offset, std::span<char> out) const {
    if (offset >= valid_) return 0;
    const std::uint64_t wanted = std::min<std::uint64_t>(out.size(), valid_ - offset);
    const bool is_small = out.size() < kPage;
    if (is_small && ReadRecent(offset, out.first(static_cast<std::size_t>(wanted))))
        return static_cast<std::size_t>(wanted);
    // A file that has become shorter since is as bad as a disk that fails.
    int error = EIO;
    const std::size_t done = Tellurion::FileBytes::ReadAt(
        descriptor_, out.first(static_cast<std::size_t>(wanted)), offset, &error);
    if (done < wanted && read_failure_ == 0) read_failure_ = error;
    return done;
}

/// False where the bytes must be asked of the disk alone.
bool StagedFile::ReadRecent(std::uint64_t offset, std::span<char> out) const {
    const std::uint64_t number = offset / kPage;
    const std::size_t within = static_cast<std::size_t>(offset % kPage);
    if (out.size() > kPage - within) return false;
    if (!recent_ || recent_number_ != number) {
        if (!recent_) recent_ = std::make_unique<Page>();
        recent_number_ = number;
        const std::uint64_t start = number * kPage;
        const std::span<char> page = std::span(*recent_).first(
            static_cast<std::size_t>(std::min<std::uint64_t>(kPage, old_length_ - start)));
        if (Tellurion::FileBytes::ReadAt(descriptor_, page, start) < page.size()) {
            recent_.reset();
            return false;
        }
    }
    std::memcpy(out.data(), recent_->data() + within, out.size());
    return true;
}

std::size_t StagedFile::ReadAt(std::uint64_t offset, std::span<char> out) const {
    std::size_t done = 0;
    while (done < out.size() && offset + done < length_) {
        const std::uint64_t at = offset + done;
        const auto next = pages_.lower_bound(at / kPage);
        const bool staged = next != pages_.end() && next->first == at / kPage;
        std::uint64_t end = length_;
        if (staged)
            end = std::min(end, (next->first + 1) * kPage);
        else if (next != pages_.end())
            end = std::min(end, next->first * kPage);
        const std::span<char> part =
            out.subspan(done, static_cast<std::size_t>(std::min<std::uint64_t>(out.size() - done, end - at)));
        if (staged) {
            std::memcpy(part.data(), next->second->data() + at % kPage, part.size());
        } else {
            const std::size_t got = ReadDisk(at, part);
            // Behind the old end, what nobody has written reads as zeros. Before it, the
            // disk failed.
            if (got < part.size() && at + got < valid_) return done + got;
            std::memset(part.data() + got, 0, part.size() - got);
        }
        done += part.size();
    }
    return done;
}

std::string StagedFile::Bytes(std::uint64_t offset, std::size_t count) const {
    if (offset >= length_) return {};
    std::string bytes(static_cast<std::size_t>(std::min<std::uint64_t>(count, length_ - offset)), '\0');
    bytes.resize(ReadAt(offset, bytes));
    return bytes;
}

StagedFile::Page& StagedFile::PageInMemory(std::uint64_t number) {
    std::unique_ptr<Page>& page = pages_[number];
    if (!page) {
        page = std::make_unique<Page>();
        page->fill('\0');
        ReadDisk(number * kPage, *page);
    }
    return *page;
}

void StagedFile::WriteAt(std::uint64_t offset, std::span<const char> bytes) {
    touched_ = true;
    while (!bytes.empty()) {
        const std::size_t within = static_cast<std::size_t>(offset % kPage);
        const std::size_t count = std::min(bytes.size(), kPage - within);
        std::memcpy(PageInMemory(offset / kPage).data() + within, bytes.data(), count);
        bytes = bytes.subspan(count);
        offset += count;
        length_ = std::max(length_, offset);
    }
}

void StagedFile::KeepInMemory(std::uint64_t offset, std::uint64_t count) {
    const std::uint64_t end = offset + std::min(count, length_ - std::min(offset, length_));
    for (std::uint64_t at = offset / kPage; at * kPage < end; ++at)
        PageInMemory(at);
}

void StagedFile::Truncate(std::uint64_t length) {
    touched_ = true;
    length_ = length;
    valid_ = std::min(valid_, length);
    pages_.erase(pages_.lower_bound((length + kPage - 1) / kPage), pages_.end());
    const auto last = pages_.find(length / kPage);
    if (last != pages_.end()) std::fill(last->second->begin() + length % kPage, last->second->end(), '\0');
}

std::vector<StagedFile::Change> StagedFile::ChangesWithinOldLength() const {
    std::vector<Change> changes;
    for (const auto& [number, page] : pages_) {
        const std::uint64_t start = number * kPage;
        if (start >= old_length_) break;
        Page old{};
        const std::size_t count = ReadDisk(start, old);
        // Most blocks are as they were, and are compared fast.
        for (std::size_t block = 0; block < count; block += kCompared) {
            const std::size_t end = std::min(block + kCompared, count);
            if (std::memcmp(old.data() + block, page->data() + block, end - block) == 0) continue;
            for (std::size_t i = block; i < end; ++i) {
                if (old[i] == (*page)[i]) continue;
                const bool continues =
                    !changes.empty() && changes.back().offset + changes.back().bytes.size() == start + i;
                if (!continues) changes.push_back({start + i, {}});
                changes.back().bytes.push_back((*page)[i]);
            }
        }
    }
    return changes;
}

}  // namespace MapAnchor
