#include "export/AppendToFile.h"

#include <MapAnchor/BGeoReferenceWriteException.h>
#include <Tellurion/BFileAccessException.h>
#include <Tellurion/BFileReplacement.h>
#include <Tellurion/BLogger.h>
#include <Tellurion/FileBytes.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cerrno>
#include <cstring>

namespace MapAnchor {

using Tellurion::BFileAccessException;
using Tellurion::BFileReplacement;
using Tellurion::BLogger;
using Tellurion::BString;

namespace {

constexpr const char* kSource = "BRefGeoPDF::Write";

[[noreturn]] void ThrowUnwritten(const BString& file, const BString& reason) {
    throw BGeoReferenceWriteException(kSource,
                                      BString::Format("Failed writing PDF file <%ls>: %ls.", file, reason));
}

[[noreturn]] void ThrowChanged(const BString& file) {
    throw BFileAccessException(
        kSource, BString::Format("File <%ls> was changed by another program while it was read.", file));
}

class Descriptor {
public:
    Descriptor(const BString& file, int access)
        : number_(::open(file.StdStr().c_str(), access | O_CLOEXEC)), error_(number_ < 0 ? errno : 0) {}
    /// What was synced is there, whatever closing says.
    ~Descriptor() {
        if (number_ >= 0) ::close(number_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int Number() const { return number_; }
    int Error() const { return error_; }
    bool HasSize(std::uint64_t size) const {
        struct stat state {};
        return ::fstat(number_, &state) == 0 && static_cast<std::uint64_t>(state.st_size) == size;
    }

private:
    int number_;
    int error_;
};

/// An error number of the system; 0 on success. File systems without reservations write at once.
int Reserve(int file, std::uint64_t size, std::size_t count) {
    if (::fallocate(file, FALLOC_FL_KEEP_SIZE, static_cast<off_t>(size), static_cast<off_t>(count)) == 0)
        return 0;
    return errno == ENOSPC || errno == EDQUOT || errno == EFBIG || errno == EIO ? errno : 0;
}

int WriteAt(int file, std::uint64_t position, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::pwrite(file, bytes.data(), bytes.size(), static_cast<off_t>(position));
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return written < 0 ? errno : EIO;
        bytes.remove_prefix(static_cast<std::size_t>(written));
        position += static_cast<std::uint64_t>(written);
    }
    return 0;
}

/// Cuts the file back. Where that fails as well, the caller hears of both.
void Restore(int file, std::uint64_t size, BString& reason) {
    int error = ::ftruncate(file, static_cast<off_t>(size)) == 0 ? 0 : errno;
    if (error == 0) error = Tellurion::FileBytes::Sync(file);
    if (error == 0) return;
    reason = reason + BString::Format("; its old end, at byte %llu, could not be restored: %s",
                                      static_cast<unsigned long long>(size), std::strerror(error));
}

void AppendInPlace(const BString& file, const Descriptor& open, std::uint64_t size, std::string_view tail) {
    int error = Reserve(open.Number(), size, tail.size());
    if (error == 0) error = WriteAt(open.Number(), size, tail);
    if (error == 0) error = Tellurion::FileBytes::SyncData(open.Number());
    if (error != 0) {
        BString reason(std::strerror(error));
        Restore(open.Number(), size, reason);
        ThrowUnwritten(file, reason);
    }
}

void AppendToCopy(const BString& file, std::uint64_t size, std::string_view tail) {
    const Descriptor old(file, O_RDONLY);
    if (old.Number() < 0) ThrowUnwritten(file, BString(std::strerror(old.Error())));
    if (!old.HasSize(size)) ThrowChanged(file);
    BFileReplacement out(file);
    if (!out.Open(BFileReplacement::EReadOnly::Replace) || out.IsInPlace())
        ThrowUnwritten(file, out.GetFailure().IsEmpty() ? BString("it is read-only") : out.GetFailure());
    std::string piece(std::size_t{1} << 20, '\0');
    for (std::uint64_t at = 0; at < size;) {
        int error = 0;
        const std::size_t got = Tellurion::FileBytes::ReadAt(old.Number(), piece, at, &error);
        if (got == 0) ThrowUnwritten(file, BString(std::strerror(error != 0 ? error : EIO)));
        if (!out.Write(std::string_view(piece).substr(0, got))) break;
        at += got;
    }
    if (!out.Write(tail) || !out.Commit()) ThrowUnwritten(file, out.GetFailure());
    for (const BString& loss : out.GetLosses())
        BLogger::Instance()->WriteLine(Tellurion::ELogSeverity::Error, "%s %ls", kSource, loss);
}

}  // namespace

void AppendToFile(const BString& file, std::uint64_t size, std::string_view tail) {
    const Descriptor open(file, O_RDWR);
    if (open.Error() == EACCES || open.Error() == EPERM) return AppendToCopy(file, size, tail);
    if (open.Number() < 0) ThrowUnwritten(file, BString(std::strerror(open.Error())));
    if (!open.HasSize(size)) ThrowChanged(file);
    AppendInPlace(file, open, size, tail);
}

}  // namespace MapAnchor
