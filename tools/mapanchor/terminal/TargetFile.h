#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace Tool {

/// Files that the tool makes. Failures are std::runtime_errors that name the file, the
/// system's reason and what helps.

/// The system's words for an error number, such as "No space left on device".
std::string ReasonOf(int error);

/// True when both names lead to one file, through links too.
bool IsSameFile(const std::string& a, const std::string& b);

/// The words for a target that is there and must not be.
std::string ExistsText(const std::string& file);

/// Writes a whole file that does not exist or, with `overwrite`, takes the place of another
/// in one step: a failure leaves what was there.
void WriteWholeFile(const std::string& file, const std::string& text, bool overwrite);

/// Makes sure of a target before the library writes it: that it is not there, where it must
/// not be, and that it can be written. A file that is new and empty at the end is removed.
class ReservedTarget {
public:
    ReservedTarget(std::string file, bool overwrite);
    ~ReservedTarget();
    ReservedTarget(ReservedTarget&& other) noexcept;
    ReservedTarget(const ReservedTarget&) = delete;
    ReservedTarget& operator=(const ReservedTarget&) = delete;

    /// True when no file was there.
    bool IsNew() const { return is_new_; }

private:
    void TryToWrite();

    std::string file_;
    bool is_new_ = false;
};

/// A folder of its own beside a target, for what is made under the target's name there and
/// moved over at the end. Whatever is left in it goes with it.
class FolderBeside {
public:
    explicit FolderBeside(const std::string& target);
    ~FolderBeside();
    FolderBeside(const FolderBeside&) = delete;
    FolderBeside& operator=(const FolderBeside&) = delete;

    std::filesystem::path NameInside() const { return folder_ / target_.filename(); }
    /// Moves every file of the folder beside the target.
    void MoveOut(bool overwrite);

private:
    std::filesystem::path target_;  ///< with links followed
    std::filesystem::path folder_;
};

}  // namespace Tool
