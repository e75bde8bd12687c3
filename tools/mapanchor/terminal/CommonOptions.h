#pragma once

#include "terminal/Console.h"

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace Tool {

/// Options that every subcommand has.
struct CommonOptions {
    bool json = false;
    int indent = -1;
    bool quiet = false;
    bool verbose = false;
    ColorMode color = ColorMode::Auto;

    void AddTo(CLI::App& app);  ///< under the heading "Output options"
    Console MakeConsole() const { return Console(color, quiet); }
};

/// A check of an option: what is wrong with an empty name, which a script may have made of a
/// variable that is not set.
std::string RefuseEmpty(const std::string& name);

/// The names of inputs, as ForEachInput() takes them, and how those on stdin end.
void AddInputNames(CLI::App& app, const std::string& name, const std::string& description,
                   std::vector<std::string>& names, bool& nul_separated);
void AddNulSeparated(CLI::App& app, bool& nul_separated);

/// The numbers that the text begins with, with commas between them; what follows stays in `text`.
std::vector<double> NumbersIn(std::string_view& text, std::size_t most);

struct NumberRange {
    double least = 0.0;
    double most = 1e9;
};

/// An option whose value is a number in the range, written with a decimal point whatever
/// the locale of the process.
CLI::Option* AddNumber(CLI::App& app, const std::string& name, std::function<void(double)> take,
                       NumberRange range, const std::string& description);

}  // namespace Tool
