#pragma once

#include <string>

namespace MapAnchor {

class StagingFolder;

/// The part of GDAL's file system that leads to the staging folders of this process.
/// The functions may be called from several threads at once.
class StagingLayer {
public:
    /// The name under which GDAL finds the folder from now on, with a slash at its end.
    static std::string Add(StagingFolder& folder);
    static void Remove(const std::string& name);
};

}  // namespace MapAnchor
