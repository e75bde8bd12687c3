#pragma once

#include <Tellurion/BString.h>
#include <Tellurion/Export.h>

#include <memory>
#include <string_view>
#include <vector>

namespace Tellurion {

/// Replaces a file so that its name leads to the old content or to the new one at
/// every moment, also when the disk fills up, the program is killed or the power fails.
///
///     Open()    map.tfw             the old content, untouched
///               .mapanchor-a1B2c3   the new content grows beside it, for its owner alone
///     Commit()  .mapanchor-a1B2c3   gets what belongs to the old file, and is synced
///               map.tfw             is now that file; the folder is synced
///
/// A kill can leave the temporary file behind; everything else removes it.
///
/// | target | what happens |
/// |---|---|
/// | a regular file | mode, owner, access control list and extended attributes are given to the new file;
/// what cannot be given is among GetLosses() | | a symbolic link | stays; the file that it leads to is
/// replaced, or made | | a file with other hard links | replaced; then its other names get the new content in
/// place and it becomes a hard link of them again. A kill at that moment can leave the other names
/// incomplete, never the target | | no file yet | the mode is what open() gives a new file with 0666, from
/// its first byte | | a device, a pipe, /dev/stdout | written directly | | a file in a folder that takes no
/// new file, or a mount point | the whole content is collected first, in memory, and then written over the
/// old one, which is put back when that fails; a kill at that moment can leave a mixture |
///
/// Nothing throws for the file's sake: failures are results. One object is not for two
/// threads at once.
class TELLURION_EXPORT BFileReplacement {
public:
    /// What is done with a target that may be replaced in its folder but not written.
    enum class EReadOnly {
        Refuse,   ///< Open() fails, as opening the file for writing does
        Replace,  ///< it is replaced; its other hard links keep the old content
    };

    /// What a power failure right after Commit() may leave under the target's name.
    enum class EAfterPowerFailure {
        New,       ///< the new content: the folder is synced too
        OldOrNew,  ///< one of the two, whole; a fraction of the time
    };

    /// What is done with a target that is there.
    enum class EExisting {
        Replace,
        Refuse,  ///< Open() fails, for a link as well, and so does Commit() where another program made it
                 ///< meanwhile
    };

    explicit BFileReplacement(const BString& target);  ///< touches no file before Open()
    ~BFileReplacement();                               ///< as Abort()
    BFileReplacement(const BFileReplacement&) = delete;
    BFileReplacement& operator=(const BFileReplacement&) = delete;

    /// For the next Open(). EExisting::Replace until set.
    void SetExisting(EExisting existing);

    /// Gets ready to write, with nothing changed under the target's name. False where the
    /// target cannot be opened for writing, such as without permission, or made.
    bool Open(EReadOnly read_only = EReadOnly::Refuse);

    /// Appends to the new content; false after any failed write.
    bool Write(std::string_view bytes);
    /// The new content, open for reading and writing (a special target: for writing),
    /// for callers that write by themselves; -1 when nothing is open. Not the caller's to close.
    int GetDescriptor() const;
    /// A name under which the new content can be opened, for code that wants one.
    BString GetTemporary() const;
    /// True when the content is collected in memory, and Commit() writes over the old one.
    bool IsInPlace() const;
    /// Takes a finished file for the new content. It is moved where it can be, else copied.
    bool Adopt(const BString& file);

    /// Makes the new content the target's. False after any failure; the target then has
    /// its old content, or does not exist if it did not.
    bool Commit(EAfterPowerFailure after = EAfterPowerFailure::New);
    /// Leaves the target as it is and removes the temporary file.
    void Abort();

    const BString& GetTarget() const;  ///< as it was given
    /// The error number of the system of the first failure; 0 for none.
    int GetError() const;
    /// The first failure in words, such as "No space left on device" or "cannot create a
    /// file in its folder: Permission denied"; empty for none.
    const BString& GetFailure() const;
    /// What of the old file could not be kept by a Commit() that succeeded: one sentence
    /// each, which names the file and the reason.
    const std::vector<BString>& GetLosses() const;

private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace Tellurion
