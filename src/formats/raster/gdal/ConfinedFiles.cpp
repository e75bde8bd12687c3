#include "raster/gdal/ConfinedFiles.h"

#include <Tellurion/Ascii.h>
#include <Tellurion/FileBytes.h>
#include <Tellurion/NamedFiles.h>
#include <Tellurion/RegularFile.h>

#include <cpl_string.h>
#include <cpl_vsi.h>
#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <map>
#include <memory>
#include <string_view>
#include <utility>

namespace MapAnchor {
namespace {

/// A description beside a raster is far shorter.
constexpr off_t kLongestText = off_t{64} << 20;

struct Registry {
    std::mutex mutex;
    std::map<unsigned, ConfinedFiles*> files;
    unsigned last = 0;
};

Registry& Registered() {
    static auto* const registry = new Registry;
    return *registry;
}

/// Two copies of this library in a process have two registries, and so two names.
const std::string& Prefix() {
    static const auto* const prefix = new std::string(
        "/vsimapanchorfiles" + std::to_string(reinterpret_cast<std::uintptr_t>(&Registered())) + "/");
    return *prefix;
}

unsigned Register(ConfinedFiles* files) {
    Registry& registry = Registered();
    const std::lock_guard lock(registry.mutex);
    while (!registry.files.try_emplace(++registry.last, files).second) {
    }
    return registry.last;
}

/// "17/a.tif" in the current folder, "17r/maps/a.tif" from the root.
std::string NameWithin(unsigned number, const std::string& path) {
    std::string name = Prefix();
    name += std::to_string(number);
    name += path.starts_with('/') ? 'r' : '/';
    return name += path;
}

/// Whose name it is, which leaves the path; null for a name that nobody gave out.
ConfinedFiles* Find(const char* name, std::string& path) {
    unsigned number = 0;
    const char* const end = name + std::strlen(name);
    const char* const start = std::from_chars(name, end, number).ptr;
    path = start;
    const bool from_root = path.starts_with('r');
    if (start == name || (from_root && path.size() > 1 && path[1] != '/')) return nullptr;
    path.erase(0, 1);
    if (from_root && path.empty()) path.push_back('/');
    Registry& registry = Registered();
    const std::lock_guard lock(registry.mutex);
    const auto found = registry.files.find(number);
    return found == registry.files.end() ? nullptr : found->second;
}

std::string_view NameOf(std::string_view path) {
    return path.substr(path.rfind('/') + 1);
}

/// The members of a coverage, of a distribution and of a transfer have names of their own.
bool BelongsToSet(const std::string& raster, const std::string& other) {
    if (raster.ends_with(".adf")) return other.ends_with(".adf");
    if (raster.ends_with(".thf")) return other.ends_with(".gen") || other.ends_with(".img");
    if (raster.ends_with(".gen")) return other.ends_with(".img");
    constexpr std::size_t kBase = 4;
    return raster.ends_with(".ddf") && other.ends_with(".ddf") &&
           raster.compare(0, kBase, other, 0, kBase) == 0;
}

/// True for what is named after the raster. Overviews and masks hold pixels alone, and GDAL
/// would open them with any driver.
bool IsSidecar(const std::string& raster, const std::string& other) {
    const std::size_t dot = raster.rfind('.');
    const std::string stem = raster.substr(0, dot);
    if (other.ends_with(".ovr") || other.ends_with(".msk")) return false;
    if (!other.starts_with(stem)) return BelongsToSet(raster, other);
    const bool goes_on =
        other.size() > stem.size() && std::isalnum(static_cast<unsigned char>(other[stem.size()]));
    return !goes_on || BelongsToSet(raster, other);
}

/// True for a file that states a place by itself.
bool IsOwnSource(std::string_view name) {
    const std::size_t dot = name.rfind('.');
    const std::string_view extension = dot == std::string_view::npos ? "" : name.substr(dot + 1);
    for (const std::string_view known : {"tab", "wld", "prj", "rsf", "points", "ers"})
        if (extension == known) return true;
    return name.ends_with(".aux.xml") ||
           (extension.size() >= 3 && extension.size() <= 5 && extension.ends_with('w'));
}

struct OpenFile {
    ConfinedFiles& owner;
    std::string path;
    int descriptor = -1;
    vsi_l_offset size = 0;
    vsi_l_offset position = 0;
    bool at_end = false;
    bool is_refused = false;
    vsi_l_offset tail_end = 0;
    std::string tail{};  ///< what was read last

    OpenFile(ConfinedFiles& of, std::string named) : owner(of), path(std::move(named)) {}
    ~OpenFile() {
        if (descriptor >= 0) ::close(descriptor);
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    bool IsRaster() const { return path == owner.Path(); }
    vsi_l_offset window_start = 0;
    std::string window{};  ///< the file's bytes from there, so that small reads cost no system call

    bool IsAccepted(std::string_view text);
    void Inspect(const char* bytes, std::size_t count);
    std::size_t Fetch(char* out, std::size_t count);
};

/// Refuses a text that names a file.
bool OpenFile::IsAccepted(std::string_view text) {
    const std::string named = Tellurion::FileNamedIn(text);
    if (named.empty()) return true;
    owner.Refuse(path, "names the file " + named);
    is_refused = true;
    return false;
}

/// A path may begin in one piece and end in the next.
void OpenFile::Inspect(const char* bytes, std::size_t count) {
    constexpr std::size_t kTail = 4096;
    if (tail_end != position) tail.clear();
    tail.append(bytes, count);
    IsAccepted(tail);
    if (tail.size() > kTail) tail.erase(0, tail.size() - kTail);
    tail_end = position + count;
}

/// The bytes at the position; how many there were.
std::size_t OpenFile::Fetch(char* out, std::size_t count) {
    constexpr std::size_t kWindow = 4096;
    if (count >= kWindow) return Tellurion::FileBytes::ReadAt(descriptor, {out, count}, position);
    if (position < window_start || position + count > window_start + window.size()) {
        window.resize(kWindow);
        window.resize(Tellurion::FileBytes::ReadAt(descriptor, window, position));
        window_start = position;
    }
    return window.copy(out, count, static_cast<std::size_t>(position - window_start));
}

/// A sidecar is looked at as a whole, before GDAL sees any of it.
bool IsInnocent(OpenFile& file) {
    if (file.IsRaster()) return true;
    if (static_cast<off_t>(file.size) > kLongestText) {
        file.owner.Refuse(file.path, "is too long for a description");
        return false;
    }
    std::string text(static_cast<std::size_t>(file.size), '\0');
    text.resize(Tellurion::FileBytes::ReadAt(file.descriptor, text, 0));
    return file.IsAccepted(text);
}

int Stat(void*, const char* name, VSIStatBufL* status, int) {
    std::string path;
    ConfinedFiles* const files = Find(name, path);
    if (!files) return -1;
    const bool is_folder = path == files->Folder();
    if (!is_folder && !files->Shows(path)) return -1;
    if (::stat64(path.empty() ? "." : path.c_str(), status) != 0) return -1;
    if (is_folder || S_ISREG(status->st_mode)) return 0;
    if (!S_ISDIR(status->st_mode)) files->Refuse(path, "is not a regular file");
    return -1;
}

void* Open(void*, const char* name, const char* access) {
    std::string path;
    ConfinedFiles* const files = Find(name, path);
    errno = EACCES;
    if (!files || !files->Shows(path) || access[0] != 'r' || std::strchr(access, '+')) return nullptr;
    struct stat status;
    auto file = std::make_unique<OpenFile>(*files, path);
    file->descriptor = Tellurion::OpenRegularFile(path.c_str(), &status);
    if (file->descriptor < 0) {
        if (errno == EINVAL || errno == EISDIR) files->Refuse(path, "is not a regular file");
        return nullptr;
    }
    file->size = static_cast<vsi_l_offset>(status.st_size);
    if (IsInnocent(*file)) return file.release();
    errno = EACCES;
    return nullptr;
}

size_t Read(void* handle, void* buffer, size_t size, size_t count) {
    auto& file = *static_cast<OpenFile*>(handle);
    if (size == 0 || count == 0 || file.is_refused) return 0;
    const std::size_t got = file.Fetch(static_cast<char*>(buffer), size * count);
    if (file.IsRaster()) file.Inspect(static_cast<const char*>(buffer), got);
    file.at_end = got < size * count || file.is_refused;
    if (file.is_refused) return 0;
    file.position += got;
    return got / size;
}

int Seek(void* handle, vsi_l_offset offset, int whence) {
    auto& file = *static_cast<OpenFile*>(handle);
    const vsi_l_offset from = whence == SEEK_CUR ? file.position : whence == SEEK_END ? file.size : 0;
    file.position = from + offset;
    file.at_end = false;
    return 0;
}

vsi_l_offset Tell(void* handle) {
    return static_cast<OpenFile*>(handle)->position;
}

int Eof(void* handle) {
    return static_cast<OpenFile*>(handle)->at_end ? 1 : 0;
}

int Close(void* handle) {
    const std::unique_ptr<OpenFile> file(static_cast<OpenFile*>(handle));
    return ::close(std::exchange(file->descriptor, -1));
}

struct FolderCloser {
    void operator()(DIR* folder) const noexcept { ::closedir(folder); }
};

/// The raster and what belongs to it. A folder with more entries than GDAL cares to see is
/// not listed, and GDAL asks for each file that it knows of.
char** ReadFolder(void*, const char* name, int most) {
    std::string path;
    ConfinedFiles* const files = Find(name, path);
    if (!files || path != files->Folder()) return nullptr;
    const std::unique_ptr<DIR, FolderCloser> folder(::opendir(path.empty() ? "." : path.c_str()));
    CPLStringList names;
    int seen = 0;
    while (const dirent* entry = folder ? ::readdir(folder.get()) : nullptr) {
        if (most > 0 && ++seen > most) return nullptr;
        const bool may_be_file =
            entry->d_type == DT_REG || entry->d_type == DT_LNK || entry->d_type == DT_UNKNOWN;
        if (may_be_file && files->ShowsName(entry->d_name)) names.AddString(entry->d_name);
    }
    return names.StealList();
}

}  // namespace

ConfinedFiles::ConfinedFiles(const Tellurion::BString& file, Sidecars sidecars)
    : path_(file.StdStr()), sidecars_(sidecars), number_(Register(this)), name_(NameWithin(number_, path_)) {}

ConfinedFiles::~ConfinedFiles() {
    Registry& registry = Registered();
    const std::lock_guard lock(registry.mutex);
    registry.files.erase(number_);
}

std::string ConfinedFiles::PathOf(const char* name) const {
    std::string path;
    const std::string& prefix = Prefix();
    const bool is_within =
        std::strncmp(name, prefix.c_str(), prefix.size()) == 0 && Find(name + prefix.size(), path) == this;
    return is_within ? path : name;
}

std::vector<std::string> ConfinedFiles::TakeRefusals() {
    const std::lock_guard lock(mutex_);
    return std::exchange(refusals_, {});
}

bool ConfinedFiles::IsRefused() const {
    const std::lock_guard lock(mutex_);
    return is_refused_;
}

void ConfinedFiles::Install() {
    // A host that destroys its drivers may keep GDAL's file layers, and a second handler
    // under one name would leak the first.
    const std::unique_ptr<char*, decltype(&CSLDestroy)> installed(VSIGetFileSystemsPrefixes(), CSLDestroy);
    if (CSLFindString(installed.get(), Prefix().c_str()) >= 0) return;
    const std::unique_ptr<VSIFilesystemPluginCallbacksStruct,
                          decltype(&VSIFreeFilesystemPluginCallbacksStruct)>
        functions(VSIAllocFilesystemPluginCallbacksStruct(), VSIFreeFilesystemPluginCallbacksStruct);
    functions->stat = Stat;
    functions->read_dir = ReadFolder;
    functions->open = Open;
    functions->read = Read;
    functions->seek = Seek;
    functions->tell = Tell;
    functions->eof = Eof;
    functions->close = Close;
    VSIInstallPluginHandler(Prefix().c_str(), functions.get());
}

std::string ConfinedFiles::Folder() const {
    const std::size_t slash = path_.rfind('/');
    return slash == std::string::npos ? "" : path_.substr(0, std::max<std::size_t>(slash, 1));
}

bool ConfinedFiles::Shows(const std::string& path) const {
    const std::size_t start = path_.rfind('/') + 1;
    return path.compare(0, start, path_, 0, start) == 0 && ShowsName(path.substr(start));
}

bool ConfinedFiles::ShowsName(const std::string& name) const {
    if (name.find('/') != std::string::npos) return false;
    const std::string_view own = NameOf(path_);
    if (name == own) return true;
    const std::string lower = Tellurion::LowerAscii(name);
    return IsSidecar(Tellurion::LowerAscii(own), lower) &&
           !(sidecars_ == Sidecars::Hidden && IsOwnSource(lower));
}

void ConfinedFiles::Refuse(const std::string& path, const std::string& reason) {
    const std::lock_guard lock(mutex_);
    std::string line = path + ' ' + reason;
    if (std::ranges::find(refusals_, line) == refusals_.end()) refusals_.push_back(std::move(line));
    if (path == path_) is_refused_ = true;
}

}  // namespace MapAnchor
