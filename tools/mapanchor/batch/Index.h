#pragma once

#include <memory>
#include <string>

namespace Tool {

/// A file of footprints with what is known of each input, for a map; of the kind that
/// its extension names among GDAL's vector drivers. It is made in a folder of its own and
/// moved to its place at the end. Throws std::runtime_error when it cannot be made or
/// written, or would take the place of what is not an index.
class Index {
public:
    virtual ~Index() = default;

    /// `feature` is GeoJSON text.
    virtual void Add(const std::string& feature) = 0;
    /// To be called at the end, puts the index in its place; a late failure, such as a full disk, shows here.
    virtual void Close() = 0;
    /// Says, for a kind of file that holds no row without an area, how many were left out; else empty.
    virtual std::string LeftOutText() const = 0;
};

std::unique_ptr<Index> MakeIndex(const std::string& file, bool overwrite);

}  // namespace Tool
