#pragma once

#include <sys/stat.h>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace Tool {

/// A folder that only its owner can enter, in which a copy of a PDF is georeferenced, so
/// that the target stays whole until the result replaces it. Whatever is left of the work
/// goes with the folder. Failures of the file system are filesystem_errors.
class PdfWorkplace {
public:
    enum class Purpose {
        Save,      ///< beside the target
        Rehearsal  ///< among the temporary files
    };

    PdfWorkplace(const std::string& target, Purpose purpose);
    ~PdfWorkplace();
    PdfWorkplace(const PdfWorkplace&) = delete;
    PdfWorkplace& operator=(const PdfWorkplace&) = delete;

    /// The name to work on.
    const std::string& File() const { return file_; }
    /// True when a new file is there, or the file has grown.
    bool HasResult() const;
    /// The result takes the target's place in one step. What of the old file could not be
    /// kept, in sentences.
    std::vector<std::string> ReplaceTarget();

    /// `text` with the target's name in place of the workplace's.
    std::string InWordsOfTarget(std::string text) const;
    /// True for words about what is in the workplace alone.
    bool IsAboutLeftovers(const std::string& text) const;

private:
    std::string name_;  ///< of the target, as given
    std::filesystem::path target_;
    std::filesystem::path folder_;
    std::string file_;
    struct stat before_ {};                   ///< of the file before the work
    std::optional<std::string> temporaries_;  ///< TMPDIR as it was
};

}  // namespace Tool
