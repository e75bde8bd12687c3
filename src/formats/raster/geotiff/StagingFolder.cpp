#include "raster/geotiff/StagingFolder.h"

#include "raster/geotiff/StagingLayer.h"

#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cerrno>

namespace MapAnchor {

StagingFolder::StagingFolder(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash != std::string::npos) folder_ = path.substr(0, slash + 1);
    name_ = path.substr(folder_.size());
    prefix_ = StagingLayer::Add(*this);
    raster_name_ = prefix_ + name_;
}

StagingFolder::~StagingFolder() {
    StagingLayer::Remove(prefix_);
}

StagedFile* StagingFolder::Raster() const {
    const auto found = files_.find(name_);
    return found == files_.end() ? nullptr : found->second.get();
}

std::string StagingFolder::WithRealNames(std::string text) const {
    for (std::size_t at = text.find(prefix_); at != std::string::npos; at = text.find(prefix_, at))
        text.replace(at, prefix_.size(), folder_);
    return text;
}

StagedFile* StagingFolder::Open(const std::string& name, StagedFile::Access access) {
    const auto found = files_.find(name);
    if (found != files_.end()) {
        if (!found->second) errno = ENOENT;
        // A file that was opened for reading alone may be asked for again with more.
        const bool enough = !found->second || access == StagedFile::Access::Read ||
                            found->second->IsTouched() || ::access(PathOf(name).c_str(), W_OK) == 0;
        if (!enough) errno = EACCES;
        return enough ? found->second.get() : nullptr;
    }
    std::unique_ptr<StagedFile> opened = StagedFile::Open(PathOf(name), access);
    if (!opened) return nullptr;
    return (files_[name] = std::move(opened)).get();
}

StagedFile* StagingFolder::Create(const std::string& name) {
    if (StagedFile* existing = Open(name, StagedFile::Access::Update)) {
        existing->Truncate(0);
        return existing;
    }
    if (errno != ENOENT) return nullptr;
    const std::string folder = folder_.empty() ? "." : folder_;
    if (::access(folder.c_str(), W_OK) != 0) return nullptr;
    return (files_[name] = StagedFile::Make(PathOf(name))).get();
}

void StagingFolder::NoteListing(const char* const* names, int limit) {
    const std::string stem = name_.substr(0, name_.rfind('.'));
    int count = 0;
    int relatives = 0;
    for (; names && names[count]; ++count)
        if (::strncasecmp(names[count], stem.c_str(), stem.size()) == 0) ++relatives;
    stands_alone_ = relatives == 1 && (limit <= 0 || count < limit);
}

bool StagingFolder::Remove(const std::string& name) {
    if (!Open(name, StagedFile::Access::Update)) return false;
    files_[name].reset();
    return true;
}

bool StagingFolder::GetLength(const std::string& name, std::uint64_t& length) const {
    const auto found = files_.find(name);
    if (found == files_.end()) {
        struct stat status {};
        if (::stat(PathOf(name).c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
        length = static_cast<std::uint64_t>(status.st_size);
        return true;
    }
    if (found->second) length = found->second->Length();
    return found->second != nullptr;
}

}  // namespace MapAnchor
