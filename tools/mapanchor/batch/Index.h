#pragma once

#include "terminal/TargetFile.h"

#include <gdal_priv.h>

#include <memory>
#include <string>

namespace Tool {

/// A file of footprints with what is known of each input, for a map; of the kind that
/// its extension names among GDAL's vector drivers. It is made in a folder of its own and
/// moved to its place at the end. Throws std::runtime_error when it cannot be made or
/// written, or would take the place of what is not an index.
class Index {
public:
    Index(const std::string& file, bool overwrite);

    /// `feature` is GeoJSON text.
    void Add(const std::string& feature);
    /// To be called at the end, puts the index in its place; a late failure, such as a full disk, shows here.
    void Close();

private:
    void Commit();

    std::string file_;
    bool overwrite_;
    std::unique_ptr<FolderBeside> folder_;
    GDALDatasetUniquePtr dataset_;
    OGRLayer* layer_ = nullptr;  ///< the dataset's
    bool has_transactions_ = false;
    int uncommitted_ = 0;
};

}  // namespace Tool
