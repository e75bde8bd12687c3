#include "io/FileAttributes.h"

#include <sys/xattr.h>
#include <unistd.h>
#include <cerrno>
#include <cstring>
#include <optional>
#include <string_view>

namespace Tellurion {
namespace {

constexpr const char* kAccessList = "system.posix_acl_access";
constexpr mode_t kAllBits = 07777;
constexpr mode_t kGroupBits = 070;
constexpr mode_t kRunAsBits = 06000;

BString Lost(const std::string& what) {
    return BString(what + " (" + std::strerror(errno) + ")");
}

/// A value or a list of names; empty when there is none.
template <class Ask>
std::optional<std::string> Asked(Ask ask) {
    for (int attempt = 0; attempt < 8; ++attempt) {
        const ssize_t size = ask(nullptr, 0);
        if (size < 0) return std::nullopt;
        std::string value(static_cast<std::size_t>(size), '\0');
        const ssize_t got = ask(value.data(), value.size());
        if (got < 0 && errno == ERANGE) continue;  // it grew in between
        if (got < 0) return std::nullopt;
        value.resize(static_cast<std::size_t>(got));
        return value;
    }
    return std::nullopt;
}

std::optional<std::string> ValueOf(int file, const char* name) {
    return Asked([&](char* buffer, std::size_t size) { return ::fgetxattr(file, name, buffer, size); });
}

/// They vouch for the content, which is another now.
bool IsOfContent(std::string_view name) {
    return name == "security.ima" || name == "security.evm";
}

}  // namespace

bool FileAttributes::Read(int file) {
    if (::fstat(file, &state_) != 0) return false;
    access_list_ = ValueOf(file, kAccessList).value_or("");
    named_.clear();
    const auto names =
        Asked([&](char* buffer, std::size_t size) { return ::flistxattr(file, buffer, size); });
    for (std::string_view rest = names ? *names : std::string_view(); !rest.empty();) {
        const std::string name(rest.substr(0, rest.find('\0')));
        rest.remove_prefix(name.size() + 1);
        if (name == kAccessList || IsOfContent(name)) continue;
        if (auto value = ValueOf(file, name.c_str())) named_.emplace_back(name, std::move(*value));
    }
    return true;
}

/// The mode that can be given: what a group that is another would gain is left out.
mode_t FileAttributes::ApplyOwner(int file, std::vector<BString>& losses) const {
    mode_t mode = state_.st_mode & kAllBits;
    struct stat now {};
    if (::fstat(file, &now) != 0) return mode & ~kRunAsBits;
    if (now.st_uid == state_.st_uid && now.st_gid == state_.st_gid) return mode;
    if (::fchown(file, state_.st_uid, state_.st_gid) == 0) return mode;
    mode &= ~kRunAsBits;
    if (now.st_uid != state_.st_uid) losses.push_back(Lost("the owner"));
    if (now.st_gid == state_.st_gid || ::fchown(file, static_cast<uid_t>(-1), state_.st_gid) == 0)
        return mode;
    losses.push_back(Lost("the group"));
    return mode & ~(kGroupBits & ~(mode << 3U));
}

/// False when the rights of the group are in a list that could not be given.
bool FileAttributes::ApplyAccessList(int file, std::vector<BString>& losses) const {
    if (access_list_.empty()) {
        // A folder may hand its own list down.
        return ::fremovexattr(file, kAccessList) == 0 || errno == ENODATA || errno == EOPNOTSUPP;
    }
    if (::fsetxattr(file, kAccessList, access_list_.data(), access_list_.size(), 0) == 0) return true;
    losses.push_back(Lost("the access control list"));
    return false;
}

void FileAttributes::ApplyNamed(int file, std::vector<BString>& losses) const {
    for (const auto& [name, value] : named_) {
        if (ValueOf(file, name.c_str()) == value) continue;
        if (::fsetxattr(file, name.c_str(), value.data(), value.size(), 0) != 0)
            losses.push_back(Lost("the extended attribute " + name));
    }
}

void FileAttributes::ApplyTo(int file, std::vector<BString>& losses) const {
    ApplyNamed(file, losses);
    mode_t mode = ApplyOwner(file, losses);
    // The list before the mode: the group's bits alone would grant what the list does not.
    if (!ApplyAccessList(file, losses)) mode &= ~(kGroupBits & ~(mode << 3U));
    struct stat now {};
    const bool is_right = ::fstat(file, &now) == 0 && (now.st_mode & kAllBits) == mode;
    if (!is_right && ::fchmod(file, mode) != 0) losses.push_back(Lost("the mode"));
}

}  // namespace Tellurion
