#include "common/files/FolderNames.h"

#include <Tellurion/Ascii.h>

#include <dirent.h>
#include <sys/stat.h>
#include <algorithm>
#include <ctime>
#include <memory>
#include <utility>

namespace MapAnchor {
namespace {

struct FolderCloser {
    void operator()(DIR* folder) const noexcept { ::closedir(folder); }
};

/// A folder's names as they were at some time.
struct Listing {
    using Name = std::pair<std::string, std::string>;  ///< in lower case, and as it is

    std::string folder;
    dev_t device = 0;
    ino_t number = 0;
    timespec changed{};
    bool is_settled = false;  ///< old enough that a later change has another time
    std::vector<Name> names;

    bool IsOf(const std::string& path, const struct stat& status) const {
        return is_settled && folder == path && device == status.st_dev && number == status.st_ino &&
               changed.tv_sec == status.st_mtim.tv_sec && changed.tv_nsec == status.st_mtim.tv_nsec;
    }
};

constexpr off_t kLongFolder = off_t{128} << 10;  // some thousand entries
constexpr std::size_t kMaxEntries = std::size_t{1} << 20;

/// Empties the listing of a folder that is too long or cannot be read.
bool Fill(Listing& listing, const std::string& path, const struct stat& status) {
    constexpr time_t kSettled = 2;  // seconds, above the granularity of any file system
    listing = {path, status.st_dev, status.st_ino, status.st_mtim, false, {}};
    const std::unique_ptr<DIR, FolderCloser> folder(::opendir(path.c_str()));
    if (!folder) return false;
    while (const dirent* entry = ::readdir(folder.get())) {
        if (listing.names.size() == kMaxEntries) {
            listing.names.clear();
            return false;
        }
        listing.names.emplace_back(Tellurion::LowerAscii(entry->d_name), entry->d_name);
    }
    std::sort(listing.names.begin(), listing.names.end());
    listing.is_settled = ::time(nullptr) - status.st_mtim.tv_sec > kSettled;
    return true;
}

/// How often the files of one long folder were asked for in a row.
struct LongFolder {
    std::string path;
    off_t asked = 0;

    /// True when a listing costs less than what was asked already.
    bool IsWorthAListing(const std::string& other, off_t size) {
        constexpr off_t kBytesPerQuestion = 4096;
        if (path != other) *this = {other, 0};
        if (++asked < size / kBytesPerQuestion) return false;
        asked = 0;
        return true;
    }
};

}  // namespace

std::optional<std::vector<std::string>> NamesBeginningWith(const std::string& stem,
                                                           const std::string& folder) {
    thread_local Listing latest;
    thread_local LongFolder last;
    const std::string path = folder.empty() ? "." : folder;
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) return std::nullopt;
    if (!latest.IsOf(path, status)) {
        if (status.st_size > kLongFolder && !last.IsWorthAListing(path, status.st_size)) return std::nullopt;
        if (!Fill(latest, path, status)) return std::nullopt;
    }
    std::vector<std::string> names;
    const std::string lower = Tellurion::LowerAscii(stem);
    for (auto name = std::lower_bound(latest.names.begin(), latest.names.end(), Listing::Name(lower, ""));
         name != latest.names.end() && name->first.starts_with(lower); ++name)
        names.push_back(name->second);
    return names;
}

}  // namespace MapAnchor
