#pragma once

#include <Tellurion/BString.h>

#include <sys/stat.h>
#include <string>
#include <utility>
#include <vector>

namespace Tellurion {

/// What belongs to a file besides its content: mode, owner, access control list and
/// extended attributes.
class FileAttributes {
public:
    /// Of an open file. False, with errno, when it cannot be asked.
    bool Read(int file);
    /// Gives them to another file. What cannot be given is added to `losses`, in words
    /// such as "the owner (Operation not permitted)"; rights are never wider than before.
    void ApplyTo(int file, std::vector<BString>& losses) const;

    const struct stat& State() const { return state_; }

private:
    using Named = std::pair<std::string, std::string>;

    mode_t ApplyOwner(int file, std::vector<BString>& losses) const;
    bool ApplyAccessList(int file, std::vector<BString>& losses) const;
    void ApplyNamed(int file, std::vector<BString>& losses) const;

    struct stat state_ {};
    std::string access_list_;   ///< empty for none
    std::vector<Named> named_;  ///< the other extended attributes
};

}  // namespace Tellurion
