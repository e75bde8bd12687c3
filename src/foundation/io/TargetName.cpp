#include "io/TargetName.h"

#include <Tellurion/BFileUtilities.h>
#include <Tellurion/FileBytes.h>

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>
#include <array>
#include <cerrno>
#include <climits>
#include <optional>

namespace Tellurion {
namespace {

using FileBytes::FolderOf;

constexpr int kMaxLinks = 40;  // as the kernel
constexpr int kMaxAttempts = 100;

/// What a link leads to; nothing for what is no link.
std::optional<std::string> LinkAt(const std::string& path) {
    std::array<char, PATH_MAX> text;
    const ssize_t length = ::readlink(path.c_str(), text.data(), text.size());
    if (length <= 0) return std::nullopt;
    std::string to(text.data(), static_cast<std::size_t>(length));
    return to.front() == '/' ? to : FolderOf(path) + "/" + to;
}

/// The links in there lead to open files, which their text only describes.
bool IsOfProcesses(const std::string& folder) {
    struct statfs system {};
    return ::statfs(folder.c_str(), &system) == 0 && system.f_type == PROC_SUPER_MAGIC;
}

std::string NameBeside(const std::string& folder) {
    constexpr char kDigits[] = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    std::array<unsigned char, 6> random{};
    (void)!::getrandom(random.data(), random.size(), 0);
    std::string name = folder + "/.mapanchor-";
    for (const unsigned char number : random)
        name += kDigits[number % (sizeof kDigits - 1)];
    return name;
}

/// Tries names until one is free.
template <class Make>
bool MakeNamed(const std::string& folder, std::string& made, Make make) {
    for (int attempt = 0; attempt < kMaxAttempts; ++attempt) {
        std::string name = NameBeside(folder);
        if (make(name.c_str())) {
            made = std::move(name);
            return true;
        }
        if (errno != EEXIST) break;
    }
    return false;
}

}  // namespace

int TargetName::Find(const BString& target) {
    path = BFileUtilities::CompletePath(target).StdStr();
    if (path.empty()) return ENOENT;
    if (path.find('\0') != std::string::npos) return EINVAL;
    struct stat state {};
    const bool exists = ::stat(path.c_str(), &state) == 0;
    if (!exists && errno != ENOENT) return errno;
    kind = exists ? EKind::File : EKind::Missing;
    if (exists && !S_ISREG(state.st_mode)) kind = EKind::Special;
    std::string last = path;
    for (int links = 0; kind != EKind::Special; ++links) {
        const auto next = LinkAt(last);
        if (!next) break;
        if (links == kMaxLinks) return ELOOP;
        if (IsOfProcesses(FolderOf(last))) kind = EKind::Special;
        last = *next;
    }
    if (kind != EKind::Special) path = last;
    if (path.back() == '/') return EISDIR;
    folder = FolderOf(path);
    return 0;
}

int TargetName::MakeBeside(mode_t mode, std::string& made) const {
    int file = -1;
    MakeNamed(folder, made, [&](const char* name) {
        file = ::open(name, O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, mode);
        return file >= 0;
    });
    return file;
}

bool TargetName::LinkBeside(const std::string& file, std::string& made) const {
    return MakeNamed(folder, made, [&](const char* name) {
        return ::linkat(AT_FDCWD, file.c_str(), AT_FDCWD, name, AT_SYMLINK_FOLLOW) == 0;
    });
}

}  // namespace Tellurion
