#pragma once

#include <Tellurion/BString.h>
#include <Tellurion/FileStandIns.h>

namespace MapAnchor {

/// Lets the readers of text files read those that only GDAL's file layer can open, such as the
/// sidecars in an archive, while it lives.
class VirtualSidecars {
public:
    /// Does nothing for a name of a plain file.
    explicit VirtualSidecars(const Tellurion::BString& file);

private:
    void Add(const Tellurion::BString& file);

    Tellurion::FileStandIns contents_;
};

}  // namespace MapAnchor
