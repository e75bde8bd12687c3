#include <Tellurion/FileBytes.h>
#include <Tellurion/WithoutSync.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <vector>

namespace Tellurion::FileBytes {
namespace {

static_assert(sizeof(off_t) == sizeof(std::int64_t), "a file may be above 2 GiB on any machine");

constexpr std::size_t kChunk = std::size_t{256} << 10;

int SizeOf(int file, off_t& size) {
    struct stat state {};
    if (::fstat(file, &state) != 0) return errno;
    size = state.st_size;
    return 0;
}

int WriteAt(int file, std::string_view bytes, off_t position) {
    while (!bytes.empty()) {
        const ssize_t written = ::pwrite(file, bytes.data(), bytes.size(), position);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return written < 0 ? errno : EIO;
        bytes.remove_prefix(static_cast<std::size_t>(written));
        position += written;
    }
    return 0;
}

/// File systems that cannot reserve room say so; there the write itself fails.
int Reserve(int file, off_t from, off_t to) {
    if (to <= from) return 0;
    while (::fallocate(file, 0, from, to - from) != 0) {
        if (errno == EOPNOTSUPP || errno == ENOSYS) return 0;
        if (errno != EINTR) return errno;
    }
    return 0;
}

int CopyAndCut(int from, int to, off_t size) {
    if (const int error = Copy(from, to)) return error;
    return ::ftruncate(to, size) == 0 ? 0 : errno;
}

int CopyCutAndSync(int from, int to, off_t size) {
    if (const int error = CopyAndCut(from, to, size)) return error;
    return Sync(to);
}

}  // namespace

int Sync(int file) {
    return WithoutSync::IsOn() || ::fsync(file) == 0 ? 0 : errno;
}

int SyncData(int file) {
    return WithoutSync::IsOn() || ::fdatasync(file) == 0 ? 0 : errno;
}

std::size_t ReadAt(int file, std::span<char> out, std::uint64_t position, int* error) {
    std::size_t done = 0;
    while (done < out.size()) {
        const ssize_t got =
            ::pread(file, out.data() + done, out.size() - done, static_cast<off_t>(position + done));
        if (got < 0 && errno == EINTR) continue;
        if (got < 0 && error) *error = errno;
        if (got <= 0) break;
        done += static_cast<std::size_t>(got);
    }
    return done;
}

int WriteAll(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(file, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return written < 0 ? errno : EIO;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return 0;
}

int Copy(int from, int to) {
    off_t size = 0;
    if (const int error = SizeOf(from, size)) return error;
    std::vector<char> buffer(std::min(kChunk, static_cast<std::size_t>(size) + 1));
    for (off_t position = 0;;) {
        const ssize_t got = ::pread(from, buffer.data(), buffer.size(), position);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return errno;
        if (got == 0) return 0;
        if (const int error = WriteAt(to, {buffer.data(), static_cast<std::size_t>(got)}, position))
            return error;
        position += got;
    }
}

int Overwrite(int to, int from, int old) {
    off_t size = 0;
    off_t old_size = 0;
    int error = SizeOf(from, size);
    if (error == 0) error = SizeOf(to, old_size);
    if (error == 0 && old >= 0) error = Copy(to, old);
    if (error != 0) return error;
    error = Reserve(to, old_size, size);
    const bool untouched = error != 0;
    if (error == 0) error = CopyCutAndSync(from, to, size);
    if (error == 0) return 0;
    if (untouched)
        (void)!::ftruncate(to, old_size);
    else if (old >= 0)
        CopyAndCut(old, to, old_size);
    return error;
}

int CopyToNew(const std::string& from, const std::string& to) {
    const std::string folder = FolderOf(to);
    const int source = ::open(from.c_str(), O_RDONLY | O_CLOEXEC);
    if (source < 0) return errno;
    const int made = ::open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    int error = made < 0 ? errno : Copy(source, made);
    ::close(source);
    if (made < 0) return error;
    if (error == 0) error = Sync(made);
    if (::close(made) != 0 && error == 0) error = errno;
    if (error == 0) error = SyncFolder(folder);
    if (error != 0) ::unlink(to.c_str());
    return error;
}

int Move(const std::string& from, const std::string& to) {
    // Short of memory, this fails before the file moves and not after.
    const std::string old_folder = FolderOf(from);
    const std::string new_folder = FolderOf(to);
    const int file = ::open(from.c_str(), O_RDONLY | O_CLOEXEC);
    if (file >= 0) Sync(file);
    if (file >= 0) ::close(file);
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) != 0) {
        if (errno != EINVAL && errno != ENOSYS) return errno;
        // The file system does not know how; the name was made up for this.
        if (::access(to.c_str(), F_OK) == 0) return EEXIST;
        if (::rename(from.c_str(), to.c_str()) != 0) return errno;
    }
    SyncFolder(new_folder);
    if (new_folder != old_folder) SyncFolder(old_folder);
    return 0;
}

int SyncFolder(const std::string& folder) {
    if (WithoutSync::IsOn()) return 0;
    const int opened = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (opened < 0) return 0;
    const int failed = Sync(opened);
    const int error = failed == EINVAL ? 0 : failed;
    ::close(opened);
    return error;
}

std::string FolderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

}  // namespace Tellurion::FileBytes
