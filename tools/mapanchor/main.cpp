#include "commands/Commands.h"
#include "commands/Generate.h"
#include "render/JsonRenderer.h"
#include "terminal/Console.h"

#include <Tellurion/BFileUtilities.h>

#include <algorithm>
#include <csignal>
#include <exception>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

namespace Tool {

namespace {

constexpr const char* kDescription =
    "Read and write where rasters and maps lie on the Earth\n\n"
    "Examples:\n"
    "  mapanchor map.tfw                   tell the reference of a file\n"
    "  mapanchor --json *.tfw              one JSON object a line\n"
    "  mapanchor convert map.tfw copy.jgw  save it as another kind\n"
    "  mapanchor formats                   what can be read and saved here";

/// True when the option takes the next word as its value.
bool TakesValue(CLI::App& command, const std::string& word) {
    if (word.find('=') != std::string::npos) return false;
    const CLI::Option* option = command.get_option_no_throw(word);
    return option && option->get_items_expected_max() > 0;
}

bool IsSubcommand(const CLI::App& app, const std::string& word) {
    return !app.get_subcommands([&word](const CLI::App* command) { return command->get_name() == word; })
                .empty();
}

/// "mapanchor [options] FILE..." means info, and a subcommand may stand behind the
/// options: it moves to the front, where the parser looks for it. The parser would read a
/// name in brackets as a list of names.
std::vector<std::string> NormalWords(CLI::App& app, std::vector<std::string> words) {
    for (std::string& word : words)
        if (word.size() > 1 && word.front() == '[' && word.back() == ']') word.insert(0, "./");
    CLI::App& info = *app.get_subcommand("info");
    auto first = words.begin();
    while (first != words.end() && first->size() > 1 && first->front() == '-') {
        if (*first == "--") {  // names alone behind it
            words.insert(words.begin(), "info");
            return words;
        }
        if (app.get_option_no_throw(*first)) return words;
        first += TakesValue(info, *first) && first + 1 != words.end() ? 2 : 1;
    }
    if (words.empty()) return words;
    if (first != words.end() && IsSubcommand(app, *first))
        std::rotate(words.begin(), first, first + 1);
    else
        words.insert(words.begin(), "info");
    return words;
}

/// What the build installs beside the program, by the word that --generate takes.
std::string Generate(const std::string& what, const CLI::App& app) {
    const CommandTable table(app);
    if (what == "man") return ManPage(table);
    return what == "bash" ? BashCompletion(table) : ZshCompletion(table);
}

/// What the parser answers by itself: help, the version, and what is wrong with the words, which
/// are a user's or names of files.
ExitStatus Answer(CLI::App& app, const CLI::ParseError& error, const std::vector<std::string>& words) {
    std::ostringstream out;
    std::ostringstream ignored;
    const Console console(ColorMode::Never, false);
    if (app.exit(error, out, ignored) == 0) {
        console.Print(out.str());
        return ExitStatus::Done;
    }
    console.Complain(std::string("mapanchor: error: ") + error.what());
    for (const std::string& word : words)
        if (word.size() > 1 && word.front() == '-' &&
            Tellurion::BFileUtilities::Exists(Tellurion::BString(word)))
            console.Complain("mapanchor: for the file " + word + " write ./" + word);
    console.Complain("Run with --help for more information.");
    return ExitStatus::Usage;
}

ExitStatus RunProgram(int argc, char** argv) {
    CLI::App app(kDescription, "mapanchor");
    ExitStatus status = ExitStatus::Done;
    bool schema = false;
    app.set_version_flag("--version", "mapanchor " MAPANCHOR_VERSION);
    app.add_flag("--json-schema", schema, "Print the schema of the JSON output");
    std::string generate;
    app.add_option("--generate", generate)->group("")->check(CLI::IsMember({"man", "bash", "zsh"}));
    AddInfoCommand(app, status);
    AddConvertCommand(app, status);
    AddFormatsCommand(app, status);
    AddExtCommand(app, status);
    AddCrsCommand(app, status);
    AddDiffCommand(app, status);
    AddCheckCommand(app, status);
    AddFootprintCommand(app, status);
    AddBatchCommand(app, status);
    AddPreviewCommand(app, status);
    AddGeoreferenceCommand(app, status);
    AddSourcesCommand(app, status);
    app.require_subcommand(0, 1);
    try {
        std::vector<std::string> words = NormalWords(app, {argv + 1, argv + argc});
        std::reverse(words.begin(), words.end());  // the parser takes them from the back
        app.parse(words);
    } catch (const CLI::ParseError& error) {
        return Answer(app, error, {argv + 1, argv + argc});
    }
    if (!generate.empty()) {
        Console(ColorMode::Never, false).Print(Generate(generate, app));
        return ExitStatus::Done;
    }
    if (schema) {
        Console(ColorMode::Never, false).Print(JsonSchema());
        return ExitStatus::Done;
    }
    if (!app.get_subcommands().empty()) return status;
    std::cerr << app.help();
    return ExitStatus::Usage;
}

}  // namespace

}  // namespace Tool

int main(int argc, char** argv) {
    Tool::OpenClosedStreams();
    std::signal(SIGPIPE, SIG_IGN);  // a closed pipe is a write that fails
    try {
        return static_cast<int>(Tool::RunProgram(argc, argv));
    } catch (const Tool::ReaderLeft&) {
        return static_cast<int>(Tool::ExitStatus::ReaderLeft);
    } catch (const std::exception& error) {
        Tool::Console(Tool::ColorMode::Never, false)
            .Complain(std::string("mapanchor: error: ") + error.what());
        return static_cast<int>(Tool::ExitStatus::Error);
    }
}
