#include "commands/Help.h"

#include "commands/CommandTable.h"
#include "terminal/Wrap.h"

#include <algorithm>

namespace Tool {

namespace {

constexpr std::size_t kCommandColumn = 16;
constexpr std::size_t kOptionColumn = 28;

/// Paragraphs come in order; the examples are the last.
std::string Paragraphs(const CommandRow& command, bool examples) {
    std::string out;
    for (const std::string& paragraph : command.paragraphs)
        if ((paragraph.rfind("Examples:", 0) == 0) == examples)
            out += "\n" + (examples ? paragraph : Wrapped(paragraph, 0)) + "\n";
    return out;
}

std::string Left(const OptionRow& option) {
    // A long name alone is written below the long name of its neighbours.
    const bool short_name = option.positional || option.names[0].compare(0, 2, "--") != 0;
    std::string left = (short_name ? "  " : "      ") + Join(option.names, ", ");
    if (!option.positional && !option.value.empty()) left += " " + option.value;
    return left;
}

std::string Section(const std::string& heading, const std::vector<OptionRow>& options, bool positional) {
    std::string out;
    for (const OptionRow& option : options)
        if (option.positional == positional && (positional || option.heading == heading))
            out += Entry(Left(option), option.Described(), positional ? kCommandColumn : kOptionColumn);
    return out.empty() ? out : "\n" + heading + ":\n" + out;
}

std::string Sections(const CommandRow& command) {
    std::string out = Section("Arguments", command.options, true);
    std::vector<std::string> headings = {"Options"};
    for (const OptionRow& option : command.options)
        if (!option.positional && std::ranges::count(headings, option.heading) == 0)
            headings.push_back(option.heading);
    for (const std::string& heading : headings)
        out += Section(heading, command.options, false);
    return out;
}

std::string HelpOfProgram(const CommandTable& table) {
    std::string out = table.program.summary + "\n\nUsage:\n";
    out += "  mapanchor FILE...              the same as mapanchor info FILE...\n";
    out += "  mapanchor COMMAND [OPTIONS] ...\n\nCommands:\n";
    for (const CommandRow& command : table.commands)
        out += Entry("  " + command.name, command.summary, kCommandColumn);
    out += Sections(table.program) + Paragraphs(table.program, false) + Paragraphs(table.program, true);
    return out + "\nmapanchor help COMMAND shows the options and more examples of a command.\n";
}

std::string HelpOfCommand(const CommandRow& command) {
    std::string out = command.summary + "\n\nUsage: mapanchor " + command.name + " [OPTIONS]";
    for (const OptionRow& option : command.options)
        if (option.positional) out += " " + option.Usage();
    return out + "\n" + Paragraphs(command, false) + Sections(command) + Paragraphs(command, true);
}

}  // namespace

std::string HelpFormatter::make_help(const CLI::App* app, std::string /*name*/,
                                     CLI::AppFormatMode /*mode*/) const {
    const CommandTable table(*app);
    return app->get_parent() ? HelpOfCommand(table.program) : HelpOfProgram(table);
}

std::string ClosestWord(const std::string& word, const std::vector<std::string>& words) {
    std::string closest;
    std::size_t best = std::min<std::size_t>(3, word.size());
    for (const std::string& candidate : words) {
        // Damerau's distance between the beginnings of both, one row per letter of the word.
        std::vector<std::vector<std::size_t>> rows(word.size() + 1,
                                                   std::vector<std::size_t>(candidate.size() + 1));
        for (std::size_t i = 0; i <= word.size(); ++i) {
            for (std::size_t j = 0; j <= candidate.size(); ++j) {
                if (i == 0 || j == 0) {
                    rows[i][j] = i + j;
                    continue;
                }
                const bool same = word[i - 1] == candidate[j - 1];
                rows[i][j] =
                    std::min({rows[i - 1][j] + 1, rows[i][j - 1] + 1, rows[i - 1][j - 1] + (same ? 0 : 1)});
                if (i > 1 && j > 1 && word[i - 1] == candidate[j - 2] && word[i - 2] == candidate[j - 1])
                    rows[i][j] = std::min(rows[i][j], rows[i - 2][j - 2] + 1);
            }
        }
        if (rows[word.size()][candidate.size()] >= best) continue;
        best = rows[word.size()][candidate.size()];
        closest = candidate;
    }
    return closest;
}

}  // namespace Tool
