#pragma once

#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>

namespace Tool {

/// The name in a row of JSON Lines; empty for what is not a row of this tool.
std::optional<std::string> NameInRow(std::string_view text);

/// Where rows go, a whole one at a time: stdout, or a file of JSON Lines that an earlier
/// run began. Throws OutputLost when a row does not get there.
class RowFile {
public:
    /// To stdout.
    RowFile() = default;
    /// Goes on with `file`, or begins it. A last row that is torn is cut off. Throws
    /// std::runtime_error, with the file as it was, for one that holds anything but rows of
    /// this tool, that cannot be read, or that another run writes.
    explicit RowFile(const std::string& file);

    /// True for a name that has a row already.
    bool Has(const std::string& name) const { return names_.contains(name); }
    std::size_t Count() const { return names_.size(); }
    void Print(std::string_view row);
    /// The file's descriptor, with its lock; -1 for stdout.
    int Descriptor() const { return stream_ ? fileno(stream_.get()) : -1; }

private:
    struct Closer {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    void Lock();
    /// The length of the rows that are whole.
    off_t ReadRows();
    /// Takes whole rows off the front; their length.
    std::size_t AddRows(std::string_view text);
    [[noreturn]] void Fail(const std::string& why) const;

    std::string file_ = "standard output";
    std::unique_ptr<std::FILE, Closer> stream_;  ///< empty for stdout
    std::unordered_set<std::string> names_;
};

}  // namespace Tool
