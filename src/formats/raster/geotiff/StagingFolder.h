#pragma once

#include "raster/geotiff/StagedFile.h"

#include <map>
#include <memory>
#include <string>

namespace MapAnchor {

/// The folder of a raster as GDAL sees it during an update. GDAL opens, reads and writes
/// the raster and the files beside it under a name of its file system layer; every write
/// is kept in memory, so that none of them can fail and the disk stays as it was.
///
///     GDAL  <-->  /vsimapanchor.../7/map.tif  <-->  StagedFile  <-- reads --  folder/map.tif
///                                                       |
///                                                       +-- StagedCommit -->  folder/map.tif
///
/// Only the folder itself is visible, not what is above or below it.
class StagingFolder {
public:
    /// For the raster at `path`, a name of the local file system.
    explicit StagingFolder(const std::string& path);
    ~StagingFolder();
    StagingFolder(const StagingFolder&) = delete;
    StagingFolder& operator=(const StagingFolder&) = delete;

    /// The name under which GDAL finds the raster.
    const std::string& RasterName() const { return raster_name_; }
    /// The raster's name within the folder.
    const std::string& NameOfRaster() const { return name_; }
    /// The raster; null until it was opened, and after it was removed.
    StagedFile* Raster() const;
    /// Every file that was opened or removed, by its name within the folder. Null for a
    /// file that was removed.
    const std::map<std::string, std::unique_ptr<StagedFile>>& Files() const { return files_; }
    /// Where a file of that name is on the disk.
    std::string PathOf(const std::string& name) const { return folder_ + name; }

    /// `text` with the raster's own path in place of the name that GDAL knows.
    std::string WithRealNames(std::string text) const;

    /// The file of that name, opened if need be. Null with errno set when it does not
    /// exist or cannot be opened so.
    StagedFile* Open(const std::string& name, StagedFile::Access access);
    /// An empty file of that name in place of what is there; null with errno set when
    /// the folder or the file cannot be written.
    StagedFile* Create(const std::string& name);
    bool Remove(const std::string& name);
    /// False when there is no such file.
    bool GetLength(const std::string& name, std::uint64_t& length) const;
    /// Takes note of what is in the folder, a list that ends with a null pointer, or null.
    /// It may have been cut at `limit` names; 0 is no limit.
    void NoteListing(const char* const* names, int limit);
    /// True if GDAL has seen that no other file in the folder begins with the name of the raster
    /// without its extension, as those do that may override what the raster says.
    bool StandsAlone() const { return stands_alone_; }
    /// True for a file that this object has staged, also where it removed it.
    bool Knows(const std::string& name) const { return files_.count(name) != 0; }

private:
    std::string folder_;  ///< with its slash at the end, or empty
    std::string name_;    ///< of the raster, within the folder
    std::string prefix_;  ///< the folder as GDAL knows it, with its slash at the end
    std::string raster_name_;
    bool stands_alone_ = false;
    std::map<std::string, std::unique_ptr<StagedFile>> files_;
};

}  // namespace MapAnchor
