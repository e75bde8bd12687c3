#pragma once

#include <Tellurion/BString.h>

#include <sys/types.h>
#include <string>

namespace Tellurion {

/// Where a file that is about to be replaced really is.
struct TargetName {
    enum class EKind {
        Missing,
        File,
        Special,  ///< not a regular file, or reached through a descriptor of a process
    };

    /// Looks the target up and follows links at its end. The error number of the system.
    int Find(const BString& target);
    /// A new file in the same folder; `made` is its name. Negative, with errno, on failure.
    int MakeBeside(mode_t mode, std::string& made) const;
    /// A new hard link of `file`, which may be a link itself; `made` is its name. False,
    /// with errno, on failure.
    bool LinkBeside(const std::string& file, std::string& made) const;

    EKind kind = EKind::Missing;
    std::string path;  ///< absolute where the working folder is known
    std::string folder;
};

}  // namespace Tellurion
