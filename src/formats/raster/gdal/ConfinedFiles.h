#pragma once

#include "raster/gdal/RasterKinds.h"

#include <Tellurion/BString.h>

#include <mutex>
#include <string>
#include <vector>

namespace MapAnchor {

/// What GDAL gets to see of the file system while it reads one raster:
///
///     GDAL's driver --> /vsimapanchorfiles.../17r/maps/a.tif --> ConfinedFiles 17 --> /maps/a.tif
///                       a.tfw, a.tif.aux.xml ...                              --> the same beside it
///                       anything else                                         --> not there
///
/// Only regular files are shown, and only for reading. A text about a coordinate system that
/// names a file by its path, which PROJ would open, makes the raster unreadable and any other
/// file unseen.
class ConfinedFiles {
public:
    explicit ConfinedFiles(const Tellurion::BString& file, Sidecars sidecars = Sidecars::Shown);
    ~ConfinedFiles();
    ConfinedFiles(const ConfinedFiles&) = delete;
    ConfinedFiles& operator=(const ConfinedFiles&) = delete;

    /// The raster's name within; what GDAL makes of it stays within.
    const std::string& Name() const { return name_; }
    /// The path of a file that GDAL knows by its name within; other names as they are.
    std::string PathOf(const char* name) const;
    /// What was refused since the last call and why, such as "/maps/a.tfw is not a regular file".
    std::vector<std::string> TakeRefusals();
    /// True when the raster itself was refused.
    bool IsRefused() const;

    /// Makes the names known to GDAL; again after a host cleared its file systems.
    static void Install();

    // For the file system's functions.
    const std::string& Path() const { return path_; }
    /// True for the raster and for the files beside it that belong to it.
    bool Shows(const std::string& path) const;
    bool ShowsName(const std::string& name) const;  ///< the same of a name in the folder
    std::string Folder() const;                     ///< empty for the current one
    void Refuse(const std::string& path, const std::string& reason);

private:
    const std::string path_;
    const Sidecars sidecars_;
    const unsigned number_;
    const std::string name_;
    mutable std::mutex mutex_;
    std::vector<std::string> refusals_;
    bool is_refused_ = false;
};

}  // namespace MapAnchor
