#pragma once

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

namespace Tool {

/// One option or positional of a command, as --help shows it.
struct OptionRow {
    std::vector<std::string> names;  ///< "-q", "--quiet"; of a positional its name
    std::string value;               ///< what it takes, such as "KIND"; empty for a flag
    std::vector<std::string> choices;
    std::string description;
    std::string heading;                ///< under which --help lists it
    std::vector<std::string> excludes;  ///< options that it cannot be combined with
    bool positional = false;
    bool required = false;
    bool repeated = false;

    bool operator==(const OptionRow& other) const {
        return names == other.names && description == other.description;
    }
    /// True when it names a file or a folder, as far as the name of its value shows.
    bool TakesFile() const;
    /// The description with the words that it accepts and the options that it excludes.
    std::string Described() const;
    /// Of a positional: "SRC" or "[NAME...]".
    std::string Usage() const;
};

struct CommandRow {
    std::string name;
    std::string summary;                  ///< one line
    std::vector<std::string> paragraphs;  ///< what follows it; an indented line is an example
    std::vector<OptionRow> options;
};

/// The program and its subcommands, taken from the parser's own table, so that whatever is
/// made of it names what the parser knows. Hidden options are left out.
struct CommandTable {
    explicit CommandTable(const CLI::App& app);

    CommandRow program;
    std::vector<CommandRow> commands;
};

/// The words, joined.
std::string Join(const std::vector<std::string>& words, const std::string& between);

}  // namespace Tool
