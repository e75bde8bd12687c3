#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace Tool {

/// The names of a run, in order: names as given, "-" for those on stdin, a folder for
/// the files in it and below. Lists ahead of the demand, and never waits.
class NameSource {
public:
    using Wants = std::function<bool(const std::string& name)>;

    struct Settings {
        std::vector<std::string> roots;
        bool nul_separated = false;  ///< names on stdin end in NUL, not at a line's end
        /// Leaves out the files of one folder, in the order of their names, that are no inputs.
        std::function<void(std::vector<std::string>& files)> keep_inputs;
        Wants is_wanted_in_folder;  ///< of a folder's files; names as given are all wanted
        Wants is_wanted;
    };
    explicit NameSource(Settings settings);

    /// Lists some more, as far as that is possible at once.
    void ReadAhead();
    std::optional<std::string> Next();
    /// Why the names on stdin could not be read, after which no more come; empty when they could.
    const std::string& Fault() const { return fault_; }
    /// Nothing is left and nothing will come.
    bool IsAtEnd() const { return IsListed() && pending_.empty(); }
    /// All names are known: those taken and Pending() more.
    bool IsListed() const { return root_ >= settings_.roots.size() && folders_.empty(); }
    std::size_t Pending() const { return pending_.size(); }
    /// The descriptor that more names come from, -1 for none.
    int Descriptor() const;

private:
    void Add(const std::string& name);
    void BeginRoot();
    void WalkOn();
    void ReadSome();
    void SplitNames(std::size_t searched);
    void Fail(const std::string& why);

    Settings settings_;
    std::size_t root_ = 0;
    std::vector<std::string> folders_;  ///< still to walk, the next one last
    std::string unsplit_;               ///< of stdin
    std::string fault_;
    std::deque<std::string> pending_;
};

}  // namespace Tool
