#include <Tellurion/BFile.h>

#include "io/RegularFile.h"

#include <Tellurion/Charsets.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <cstring>

namespace Tellurion {
namespace {

constexpr std::size_t kChunk = std::size_t{32} << 10;
constexpr std::size_t kFirstChunk = std::size_t{4} << 10;  // a sidecar is read in one go
constexpr std::size_t kWriteBuffer = std::size_t{64} << 10;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

/// read(2) that goes on after a signal; 0 at the end, negative on failure.
ssize_t ReadSome(int descriptor, void* buffer, std::size_t count) {
    ssize_t got;
    do {
        got = ::read(descriptor, buffer, count);
    } while (got < 0 && errno == EINTR);
    return got;
}

bool WriteAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

}  // namespace

BFile::BFile(const BString& path) : path_(path) {}

BFile::~BFile() {
    Close();
}

bool BFile::Open(const EFileMode& access, const EFileMode& form) {
    Close();
    writing_ = access == EFileMode::Write;
    text_ = form == EFileMode::Text;
    failed_ = at_end_ = false;
    at_start_ = true;
    position_ = 0;
    buffer_.clear();
    if (path_.GetUnits().find(u'\0') != std::u16string::npos) return false;
    descriptor_ = writing_ ? ::open(path_.Ascii(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666)
                           : OpenRegularFile(path_.Ascii());
    if (descriptor_ < 0) return false;
    if (writing_) return true;
    // A file that cannot be read is one that cannot be opened.
    Fill();
    if (!failed_) return true;
    Close();
    return false;
}

bool BFile::Close() {
    if (descriptor_ < 0) return !failed_;
    if (writing_) Flush();
    if (::close(descriptor_) != 0 && writing_) failed_ = true;
    descriptor_ = -1;
    buffer_.clear();
    position_ = 0;
    at_end_ = true;
    return !failed_;
}

bool BFile::Flush() {
    if (!failed_ && !WriteAll(descriptor_, buffer_)) failed_ = true;
    buffer_.clear();
    return !failed_;
}

bool BFile::WriteLine(const BString& text) {
    if (descriptor_ < 0 || !writing_) return false;
    buffer_ += text.StdStr();
    if (buffer_.size() >= kWriteBuffer) Flush();
    return !failed_;
}

/// Puts more of the file behind what is left of the buffer; false at the end.
bool BFile::Fill() {
    if (descriptor_ < 0 || writing_ || at_end_) return false;
    buffer_.erase(0, position_);
    position_ = 0;
    const std::size_t kept = buffer_.size();
    const std::size_t chunk = at_start_ ? kFirstChunk : std::max(kChunk, kept);
    buffer_.resize(kept + chunk);
    const ssize_t got = ReadSome(descriptor_, buffer_.data() + kept, chunk);
    buffer_.resize(kept + static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
    failed_ = got < 0;
    at_end_ = got <= 0;
    if (at_start_ && text_ && buffer_.compare(0, kByteOrderMark.size(), kByteOrderMark) == 0)
        position_ = kByteOrderMark.size();
    at_start_ = false;
    return !at_end_;
}

/// A line of at most `limit` bytes.
bool BFile::NextLine(std::string_view& line, std::size_t limit) {
    std::size_t searched = 0;
    for (;;) {
        const std::string_view ahead = std::string_view(buffer_).substr(position_);
        const std::size_t end = ahead.find('\n', searched);
        if (end != std::string_view::npos && end <= limit) {
            line = ahead.substr(0, end);
            if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
            position_ += end + 1;
            return true;
        }
        if (ahead.size() >= limit) {
            line = ahead.substr(0, limit);
            position_ += limit;
            return true;
        }
        searched = ahead.size();
        if (Fill()) continue;
        line = std::string_view(buffer_).substr(position_);
        position_ = buffer_.size();
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        return searched != 0;
    }
}

bool BFile::ReadLineBytes(std::string_view& line) {
    if (!NextLine(line, kLongestLine)) return false;
    if (line.size() < kLongestLine) return true;
    at_end_ = true;
    position_ = buffer_.size();
    return true;
}

bool BFile::ReadLine(BString& line, std::size_t maxLength) {
    std::string_view bytes;
    const bool found =
        maxLength == 0 ? ReadLineBytes(bytes) : NextLine(bytes, std::min(maxLength, kLongestLine));
    if (!found) return false;
    line = DecodeLine(bytes);
    return true;
}

bool BFile::atEOF() const {
    return at_end_ && position_ == buffer_.size();
}

std::size_t BFile::Read(void* buffer, std::size_t count) {
    auto* out = static_cast<char*>(buffer);
    const std::size_t buffered = std::min(count, buffer_.size() - position_);
    std::memcpy(out, buffer_.data() + position_, buffered);
    position_ += buffered;
    std::size_t done = buffered;
    while (done < count && descriptor_ >= 0 && !writing_ && !at_end_) {
        const ssize_t got = ReadSome(descriptor_, out + done, count - done);
        at_end_ = got <= 0;
        done += static_cast<std::size_t>(std::max<ssize_t>(got, 0));
    }
    return done;
}

std::int64_t BFile::GetLength() const {
    struct stat status;
    if (descriptor_ < 0 || ::fstat(descriptor_, &status) != 0) return -1;
    return status.st_size + (writing_ ? static_cast<std::int64_t>(buffer_.size()) : 0);
}

}  // namespace Tellurion
