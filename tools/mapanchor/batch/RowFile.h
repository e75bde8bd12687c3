#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>

/// Where rows go, a whole one at a time: stdout, or a file of JSON Lines that an earlier
/// run began. Throws OutputLost when a row does not get there.
class RowFile {
public:
    /// To stdout.
    RowFile() = default;
    /// Goes on with `file`, or begins it. A last line that is torn is cut off; throws
    /// std::runtime_error for a file that is not of such rows.
    explicit RowFile(const std::string& file);

    /// True for a name that has a row already.
    bool Has(const std::string& name) const;
    std::size_t Count() const { return names_.size(); }
    void Print(std::string_view row);

private:
    struct Closer {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    std::string file_ = "standard output";
    std::unique_ptr<std::FILE, Closer> stream_;  ///< empty for stdout
    std::unordered_set<std::string> names_;      ///< as the rows have them
};
