#pragma once

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

namespace Tool {

/// Lays --help out: what a command does, its arguments and options in words, then examples, in 80
/// columns. The program's own help has one line per command.
class HelpFormatter : public CLI::FormatterBase {
public:
    std::string make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const override;
};

/// The word that was probably meant: at most two letters are missing, wrong, too many or swapped. Empty
/// when no word is that close.
std::string ClosestWord(const std::string& word, const std::vector<std::string>& words);

}  // namespace Tool
