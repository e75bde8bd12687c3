#pragma once

#include "raster/geotiff/StagingFolder.h"

#include <string>

namespace MapAnchor {

/// Keeps two updates of one raster apart, of this process or of others that ask. Waits
/// up to ten seconds. The lock is advisory and ends with the object.
class UpdateLock {
public:
    explicit UpdateLock(const std::string& path);
    ~UpdateLock();
    UpdateLock(const UpdateLock&) = delete;
    UpdateLock& operator=(const UpdateLock&) = delete;

    /// Of the locked file, open for reading and writing; -1 when the file cannot be
    /// opened so.
    int Descriptor() const { return descriptor_; }
    /// Why the file may not be updated now; empty when it may.
    const std::string& Refusal() const { return refusal_; }

private:
    bool TryToLock(const std::string& path);

    int descriptor_ = -1;
    std::string refusal_;
};

/// Brings the changes of `folder` to the disk. The raster at `path` is the old one until
/// one write of its directory pointer, or one rename, makes it the new one; whatever
/// fails or ends the process before that leaves it as it was, and what fails is undone.
/// `lock` holds the raster. Empty on success, else why nothing has changed.
std::string Commit(const StagingFolder& folder, const UpdateLock& lock);

}  // namespace MapAnchor
