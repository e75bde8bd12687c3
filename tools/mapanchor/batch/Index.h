#pragma once

#include <gdal_priv.h>

#include <string>

/// A file of footprints with what is known of each input, for a map; of the kind that
/// its extension names among GDAL's vector drivers. Throws std::runtime_error when it
/// cannot be made or written.
class Index {
public:
    Index(const std::string& file, bool overwrite);

    /// `feature` is GeoJSON text.
    void Add(const std::string& feature);
    /// To be called at the end; a late failure, such as a full disk, shows here.
    void Close();

private:
    void Commit();

    std::string file_;
    GDALDatasetUniquePtr dataset_;
    OGRLayer* layer_ = nullptr;  ///< the dataset's
    bool has_transactions_ = false;
    int uncommitted_ = 0;
};
