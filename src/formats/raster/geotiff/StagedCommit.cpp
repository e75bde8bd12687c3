#include "raster/geotiff/StagedCommit.h"

#include "raster/geotiff/TiffDirectory.h"
#include "raster/geotiff/UpdatedDirectory.h"

#include <Tellurion/BFileReplacement.h>
#include <Tellurion/BLogger.h>
#include <Tellurion/FileBytes.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <memory>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

namespace MapAnchor {

using Tellurion::BFileReplacement;
using Tellurion::BLogger;
using Tellurion::BString;
using Tellurion::ELogSeverity;

namespace {

constexpr std::chrono::seconds kMaxWait{10};
constexpr std::chrono::milliseconds kStep{5};
constexpr std::size_t kChunk = std::size_t{1} << 20;

/// The system's reason, such as "No space left on device".
std::string Reason(int error) {
    return std::strerror(error);
}

/// 0, or the errno of the write that failed.
int WriteAt(int descriptor, std::uint64_t offset, std::span<const char> bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::pwrite(descriptor, bytes.data(), bytes.size(), static_cast<off_t>(offset));
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return written < 0 ? errno : EIO;
        bytes = bytes.subspan(static_cast<std::size_t>(written));
        offset += static_cast<std::uint64_t>(written);
    }
    return 0;
}

/// A write beyond the process's limit would end it by a signal.
bool IsWithinSizeLimit(std::uint64_t length) {
    rlimit limit{};
    return ::getrlimit(RLIMIT_FSIZE, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY ||
           length <= limit.rlim_cur;
}

/// A raster that changes by appended bytes and by the pointer to its first directory.
struct Append {
    std::uint64_t pointer_offset = 0;
    std::string old_pointer;
    std::string new_pointer;
};

/// Empty when `raster` changes elsewhere, too.
std::optional<Append> FindAppend(const StagedFile& raster, const std::vector<StagedFile::Change>& changes) {
    if (!raster.KeepsOldLength() || raster.Length() < raster.OldLength() || !IsTiff(raster))
        return std::nullopt;
    const TiffPointer pointer = TiffDirectoryReader(raster).Pointer();
    Append append;
    append.pointer_offset = pointer.offset;
    append.new_pointer = raster.Bytes(pointer.offset, pointer.size);
    append.old_pointer = PointerOnDisk(raster);
    if (append.old_pointer.empty()) return std::nullopt;
    for (const StagedFile::Change& change : changes)
        if (change.offset < pointer.offset ||
            change.offset + change.bytes.size() > pointer.offset + pointer.size)
            return std::nullopt;
    return append;
}

int AppendTail(const StagedFile& raster, int descriptor) {
    for (std::uint64_t at = raster.OldLength(); at < raster.Length(); at += kChunk) {
        const std::string bytes = raster.Bytes(at, kChunk);
        if (const int error = WriteAt(descriptor, at, bytes)) return error;
    }
    return Tellurion::FileBytes::SyncData(descriptor);
}

/// A tail that stays is harmless: nothing leads to it.
bool CutTail(const StagedFile& raster, int descriptor) {
    return ::ftruncate(descriptor, static_cast<off_t>(raster.OldLength())) == 0;
}

/// Puts the old pointer back and removes the tail. The disk may hold either pointer until
/// the old one is synced; both lead to a whole directory as long as the tail stays.
void Undo(const StagedFile& raster, const Append& append, int descriptor) {
    if (WriteAt(descriptor, append.pointer_offset, append.old_pointer) == 0 &&
        Tellurion::FileBytes::SyncData(descriptor) == 0)
        CutTail(raster, descriptor);
}

/// The tail first, then the pointer. Until the pointer is written nobody sees the tail.
std::string CommitAppend(const StagedFile& raster, const Append& append, int descriptor) {
    if (!IsWithinSizeLimit(raster.Length())) return Reason(EFBIG);
    if (append.new_pointer != append.old_pointer)
        if (std::string fault = FaultOfNewDirectory(raster, append.old_pointer); !fault.empty()) return fault;
    if (const int error = AppendTail(raster, descriptor)) {
        CutTail(raster, descriptor);
        return Reason(error);
    }
    int error = WriteAt(descriptor, append.pointer_offset, append.new_pointer);
    if (error == 0) error = Tellurion::FileBytes::SyncData(descriptor);
    if (error == 0) return {};
    Undo(raster, append, descriptor);
    return Reason(error);
}

/// The staged content beside the file, ready to take its place.
std::unique_ptr<BFileReplacement> Prepare(const StagedFile& file, std::string& failure) {
    auto replacement = std::make_unique<BFileReplacement>(BString(file.Path()));
    bool written = IsWithinSizeLimit(file.Length());
    if (!written) failure = Reason(EFBIG);
    written = written && replacement->Open();
    for (std::uint64_t at = 0; written && at < file.Length(); at += kChunk)
        written = replacement->Write(file.Bytes(at, kChunk));
    if (file.ReadFailure() != 0) failure = Reason(file.ReadFailure());
    if (!written && failure.empty()) failure = replacement->GetFailure().StdStr();
    return replacement;
}

/// The files beside the raster.
class SideFiles {
public:
    /// Nothing has changed when this fails.
    std::string Prepare(const StagingFolder& folder) {
        std::string failure;
        for (const auto& [name, file] : folder.Files()) {
            if (file.get() == folder.Raster()) continue;
            if (!file)
                removed_.push_back(folder.PathOf(name));
            else if (file->IsTouched())
                changed_.push_back(MapAnchor::Prepare(*file, failure));
            if (!failure.empty()) return name + ": " + failure;
        }
        return {};
    }

    std::string Commit() {
        for (const auto& replacement : changed_)
            if (!Replace(*replacement))
                return replacement->GetTarget().StdStr() + ": " + replacement->GetFailure().StdStr();
        for (const std::string& path : removed_)
            if (::unlink(path.c_str()) != 0 && errno != ENOENT) return path + ": " + Reason(errno);
        return {};
    }

    static bool Replace(BFileReplacement& replacement) {
        if (!replacement.Commit()) return false;
        for (const BString& loss : replacement.GetLosses())
            BLogger::Instance()->WriteLine(ELogSeverity::Error, "BRefGeoTIFF::Write %ls", loss);
        return true;
    }

private:
    std::vector<std::unique_ptr<BFileReplacement>> changed_;
    std::vector<std::string> removed_;
};

std::string CommitCopy(const StagedFile& raster) {
    std::string failure;
    const auto replacement = Prepare(raster, failure);
    if (!failure.empty()) return failure;
    return SideFiles::Replace(*replacement) ? "" : replacement->GetFailure().StdStr();
}

}  // namespace

UpdateLock::UpdateLock(const std::string& path) {
    const auto end = std::chrono::steady_clock::now() + kMaxWait;
    while (!TryToLock(path)) {
        if (std::chrono::steady_clock::now() >= end) {
            refusal_ = "another program is saving it";
            return;
        }
        std::this_thread::sleep_for(kStep);
    }
}

/// True when there is nothing to wait for.
bool UpdateLock::TryToLock(const std::string& path) {
    struct stat named {};
    if (::stat(path.c_str(), &named) != 0 || !S_ISREG(named.st_mode)) return true;
    descriptor_ = ::open(path.c_str(), O_RDWR | O_CLOEXEC | O_NONBLOCK);
    if (descriptor_ < 0) return true;
    // A file system without locks keeps nobody apart; that is no reason not to save.
    const bool busy =
        ::flock(descriptor_, LOCK_EX | LOCK_NB) != 0 && (errno == EWOULDBLOCK || errno == EINTR);
    struct stat locked {};
    const bool replaced = ::fstat(descriptor_, &locked) != 0 || ::stat(path.c_str(), &named) != 0 ||
                          locked.st_ino != named.st_ino || locked.st_dev != named.st_dev;
    if (!busy && !replaced) return true;
    ::close(std::exchange(descriptor_, -1));
    return false;
}

UpdateLock::~UpdateLock() {
    if (descriptor_ >= 0) ::close(descriptor_);
}

std::string Commit(const StagingFolder& folder, const UpdateLock& lock) {
    const StagedFile* const raster = folder.Raster();
    if (!raster) return "the update would remove it";
    const std::vector<StagedFile::Change> changes = raster->ChangesWithinOldLength();
    for (const auto& [name, file] : folder.Files())
        if (file && file->ReadFailure() != 0) return name + ": " + Reason(file->ReadFailure());
    if (!raster->IsAsOpened()) return "another program has changed it meanwhile";
    SideFiles side_files;
    std::string failure = side_files.Prepare(folder);
    if (!failure.empty()) return failure;
    const std::optional<Append> append = FindAppend(*raster, changes);
    if (append && raster->IsTouched()) failure = CommitAppend(*raster, *append, lock.Descriptor());
    if (!append && raster->IsTouched()) failure = CommitCopy(*raster);
    if (!failure.empty()) return failure;
    failure = side_files.Commit();
    if (!failure.empty() && append) Undo(*raster, *append, lock.Descriptor());
    return failure;
}

}  // namespace MapAnchor
