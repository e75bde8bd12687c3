#pragma once

#include <Tellurion/BString.h>

#include <string>
#include <vector>

namespace MapAnchor {

/// Copies of files that a save may have to give back. Whatever is left goes with the object.
class KeptFiles {
public:
    KeptFiles() = default;
    ~KeptFiles();
    KeptFiles(const KeptFiles&) = delete;
    KeptFiles& operator=(const KeptFiles&) = delete;

    /// Copies each file that is there, beside it. Throws a BFileAccessException where that fails.
    void Keep(const std::vector<Tellurion::BString>& files);
    /// Puts the old files back and removes those that were not there. Empty on success, else why
    /// a file is not what it was.
    std::string Restore();

private:
    struct Kept {
        Tellurion::BString file;
        std::string copy;  ///< empty for a file that was not there
    };

    std::vector<Kept> kept_;
};

}  // namespace MapAnchor
