#include "raster/geotiff/StagingLayer.h"

#include "raster/geotiff/StagingFolder.h"

#include <cpl_conv.h>
#include <cpl_string.h>
#include <cpl_vsi.h>

#include <sys/stat.h>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <new>

namespace MapAnchor {
namespace {

/// A place in an open file.
struct Handle {
    StagedFile* file;
    std::uint64_t position = 0;
    bool at_end = false;
    bool may_write = false;
};

class Registry {
public:
    static Registry& Instance() {
        // Never destroyed: GDAL keeps the handler as long as the process runs.
        static Registry* const instance = new Registry;
        return *instance;
    }
    /// Two copies of this library in a process have two addresses here.
    const std::string& Root() const { return root_; }

    std::string Add(StagingFolder& folder) {
        std::string number;
        {
            const std::lock_guard lock(mutex_);
            number = std::to_string(++last_);
            folders_[number] = &folder;
        }
        const std::string name = root_ + number + "/";
        // A host that has destroyed GDAL's drivers has destroyed the handler with them.
        VSIStatBufL status;
        if (VSIStatExL(name.c_str(), &status, VSI_STAT_EXISTS_FLAG) != 0) Install();
        return name;
    }
    void Remove(const std::string& number) {
        const std::lock_guard lock(mutex_);
        folders_.erase(number);
    }
    StagingFolder* Find(const std::string& number) {
        const std::lock_guard lock(mutex_);
        const auto found = folders_.find(number);
        return found == folders_.end() ? nullptr : found->second;
    }

private:
    Registry() : root_("/vsimapanchor" + std::to_string(reinterpret_cast<std::uintptr_t>(this)) + "/") {}
    void Install() const;

    std::string root_;
    std::mutex mutex_;
    std::uint64_t last_ = 0;
    std::map<std::string, StagingFolder*> folders_;
};

/// A name that GDAL asks for, cut into the folder and the name within it. GDAL hands the
/// name over with or without the root, by its version.
struct Place {
    StagingFolder* folder = nullptr;
    std::string name;
};

Place PlaceOf(const char* asked) {
    std::string name = asked;
    const std::string& root = Registry::Instance().Root();
    if (name.compare(0, root.size(), root) == 0) name.erase(0, root.size());
    const std::size_t slash = name.find('/');
    Place place;
    place.folder = Registry::Instance().Find(name.substr(0, slash));
    if (slash != std::string::npos) place.name = name.substr(slash + 1);
    // Nothing leads out of the folder.
    if (place.name.find('/') != std::string::npos || place.name == "." || place.name == "..")
        place.folder = nullptr;
    if (!place.folder) errno = ENOENT;
    return place;
}

Handle& HandleOf(void* file) {
    return *static_cast<Handle*>(file);
}

int Stat(void*, const char* asked, VSIStatBufL* status, int) {
    const Place place = PlaceOf(asked);
    if (!place.folder) return -1;
    std::memset(status, 0, sizeof *status);
    if (place.name.empty()) {
        status->st_mode = S_IFDIR;
        return 0;
    }
    if (!place.folder->Knows(place.name) &&
        ::stat(place.folder->PathOf(place.name).c_str(), reinterpret_cast<struct stat*>(status)) != 0)
        return -1;
    std::uint64_t length = 0;
    if (!place.folder->GetLength(place.name, length)) return -1;
    if (status->st_mode == 0) status->st_mode = S_IFREG;
    status->st_size = static_cast<decltype(status->st_size)>(length);
    return 0;
}

int Unlink(void*, const char* asked) {
    const Place place = PlaceOf(asked);
    return place.folder && place.folder->Remove(place.name) ? 0 : -1;
}

/// The folder on the disk, and what has been added to it.
char** ReadDir(void*, const char* asked, int limit) {
    const Place place = PlaceOf(asked);
    if (!place.folder || !place.name.empty()) return nullptr;
    const std::string folder = place.folder->PathOf("");
    char** names = VSIReadDirEx(folder.empty() ? "." : folder.c_str(), limit);
    place.folder->NoteListing(names, limit);
    for (const auto& [name, file] : place.folder->Files())
        if (file && !file->IsOnDisk()) names = CSLAddString(names, name.c_str());
    return names;
}

void* Open(void*, const char* asked, const char* mode) {
    const Place place = PlaceOf(asked);
    if (!place.folder || place.name.empty()) return nullptr;
    const bool creates = std::strchr(mode, 'w') != nullptr;
    const bool updates = creates || std::strchr(mode, '+') || std::strchr(mode, 'a');
    StagedFile* const file = creates ? place.folder->Create(place.name)
                                     : place.folder->Open(place.name, updates ? StagedFile::Access::Update
                                                                              : StagedFile::Access::Read);
    if (!file) return nullptr;
    return new Handle{file, std::strchr(mode, 'a') ? file->Length() : 0, false, updates};
}

vsi_l_offset Tell(void* file) {
    return HandleOf(file).position;
}

int Seek(void* file, vsi_l_offset offset, int whence) {
    Handle& handle = HandleOf(file);
    handle.at_end = false;
    // An offset may be negative in disguise; unsigned sums come out right.
    if (whence == SEEK_SET) handle.position = 0;
    if (whence == SEEK_END) handle.position = handle.file->Length();
    handle.position += offset;
    return 0;
}

std::size_t Read(void* file, void* buffer, std::size_t size, std::size_t count) {
    Handle& handle = HandleOf(file);
    if (size == 0 || count > SIZE_MAX / size) return 0;
    const std::size_t got = handle.file->ReadAt(handle.position, {static_cast<char*>(buffer), size * count});
    handle.position += got;
    handle.at_end = got < size * count;
    return got / size;
}

int IsAtEnd(void* file) {
    return HandleOf(file).at_end ? 1 : 0;
}

std::size_t Write(void* file, const void* bytes, std::size_t size, std::size_t count) {
    Handle& handle = HandleOf(file);
    if (!handle.may_write || size == 0 || count > SIZE_MAX / size) return 0;
    try {
        handle.file->WriteAt(handle.position, {static_cast<const char*>(bytes), size * count});
    } catch (const std::bad_alloc&) {
        return 0;
    }
    handle.position += size * count;
    return count;
}

/// The disk gets what was written when all of it is known to be right.
int Flush(void*) {
    return 0;
}

int Truncate(void* file, vsi_l_offset length) {
    if (!HandleOf(file).may_write) return -1;
    HandleOf(file).file->Truncate(length);
    return 0;
}

int Close(void* file) {
    delete &HandleOf(file);
    return 0;
}

void Registry::Install() const {
    VSIFilesystemPluginCallbacksStruct* const calls = VSIAllocFilesystemPluginCallbacksStruct();
    calls->stat = Stat;
    calls->unlink = Unlink;
    calls->read_dir = ReadDir;
    calls->open = Open;
    calls->tell = Tell;
    calls->seek = Seek;
    calls->read = Read;
    calls->eof = IsAtEnd;
    calls->write = Write;
    calls->flush = Flush;
    calls->truncate = Truncate;
    calls->close = Close;
    VSIInstallPluginHandler(root_.c_str(), calls);
    VSIFreeFilesystemPluginCallbacksStruct(calls);
}

}  // namespace

std::string StagingLayer::Add(StagingFolder& folder) {
    return Registry::Instance().Add(folder);
}

void StagingLayer::Remove(const std::string& name) {
    const std::string& root = Registry::Instance().Root();
    Registry::Instance().Remove(name.substr(root.size(), name.size() - root.size() - 1));
}

}  // namespace MapAnchor
