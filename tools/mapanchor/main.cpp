#include "commands/Commands.h"
#include "commands/Generate.h"
#include "commands/Help.h"
#include "render/JsonRenderer.h"
#include "terminal/Console.h"

#include <Tellurion/BFileUtilities.h>

#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Tool {

namespace {

constexpr const char* kDescription =
    "Read, write and convert the georeferencing of rasters and maps\n\n"
    "Examples:\n"
    "  mapanchor photo.jpg                    show its georeferencing and its files\n"
    "  mapanchor --json *.tif                 one JSON object per line\n"
    "  mapanchor convert map.tfw map.tab      save it as another kind\n"
    "  mapanchor georeference scan.tif --gcps scan.points -o scan.tab";

/// True when the option takes the next word as its value.
bool TakesValue(CLI::App& command, const std::string& word) {
    if (word.find('=') != std::string::npos) return false;
    const CLI::Option* option = command.get_option_no_throw(word);
    return option && option->get_items_expected_max() > 0;
}

bool Exists(const std::string& name) {
    return Tellurion::BFileUtilities::Exists(Tellurion::BString(name));
}

bool IsSubcommand(const CLI::App& app, const std::string& word) {
    return !app.get_subcommands([&word](const CLI::App* command) { return command->get_name() == word; })
                .empty();
}

/// Without a command the words are files; a word that is close to a command's name and not a file is
/// a mistake that deserves a better answer than a missing file.
void RefuseMisspelt(const CLI::App& app, const std::string& word) {
    if (word.find_first_of("./") != std::string::npos || Exists(word)) return;
    std::vector<std::string> names;
    for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; }))
        names.push_back(command->get_name());
    const std::string meant = ClosestWord(word, names);
    if (!meant.empty())
        throw CLI::ParseError(word + " is neither a command nor a file; did you mean " + meant + "?",
                              CLI::ExitCodes::ExtrasError);
}

/// "mapanchor [options] FILE..." means info, and a subcommand may follow the
/// options: it moves to the front, where the parser looks for it. The parser would read a
/// name in brackets as a list of names.
std::vector<std::string> NormalWords(CLI::App& app, std::vector<std::string> words) {
    for (std::string& word : words)
        if (word.size() > 1 && word.front() == '[' && word.back() == ']') word.insert(0, "./");
    if (!words.empty() && words[0] == "help" && !Exists("help")) {
        words.erase(words.begin());
        if (words.empty() || IsSubcommand(app, words[0])) words.push_back("--help");
    }
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
    if (first != words.end() && IsSubcommand(app, *first)) {
        std::rotate(words.begin(), first, first + 1);
        return words;
    }
    if (first != words.end()) RefuseMisspelt(app, *first);
    words.insert(words.begin(), "info");
    return words;
}

/// What the build installs beside the program, by the word that --generate takes.
std::string Generate(const std::string& what, const CLI::App& app) {
    const CommandTable table(app);
    if (what == "man") return ManPage(table);
    return what == "bash" ? BashCompletion(table) : ZshCompletion(table);
}

/// The option that a misspelt word was probably meant to be, or empty.
std::string MeantOption(const CLI::App& command, const std::string& word) {
    const std::string option = word.substr(0, word.find('='));
    if (option.compare(0, 2, "--") != 0 || command.get_option_no_throw(option)) return "";
    std::vector<std::string> names;
    for (const CLI::Option* known : command.get_options())
        for (const std::string& name : known->get_lnames())
            names.push_back("--" + name);
    return ClosestWord(option, names);
}

/// What the parser answers by itself: help, the version, and what is wrong with the words.
ExitStatus Answer(CLI::App& app, const CLI::ParseError& error, const std::vector<std::string>& words) {
    std::ostringstream out;
    std::ostringstream ignored;
    const Console console(ColorMode::Never, false);
    if (app.exit(error, out, ignored) == 0) {
        console.Print(out.str());
        return ExitStatus::Done;
    }
    console.Complain(std::string("mapanchor: error: ") + error.what());
    const std::vector<CLI::App*> commands = app.get_subcommands();
    const CLI::App& command = commands.empty() ? app : *commands.front();
    for (const std::string& word : words) {
        if (word.size() > 1 && word.front() == '-' && Exists(word))
            console.Complain("mapanchor: for the file " + word + " write ./" + word);
        const std::string meant = MeantOption(command, word);
        if (!meant.empty()) console.Complain("mapanchor: did you mean " + meant + "?");
    }
    console.Complain(commands.empty() ? "mapanchor help lists the commands."
                                      : "mapanchor help " + command.get_name() + " lists its options.");
    return ExitStatus::Usage;
}

constexpr std::pair<const char*, void (*)(CLI::App&, ExitStatus&)> kCommands[] = {
    {"info", AddInfoCommand},
    {"convert", AddConvertCommand},
    {"georeference", AddGeoreferenceCommand},
    {"sources", AddSourcesCommand},
    {"batch", AddBatchCommand},
    {"check", AddCheckCommand},
    {"diff", AddDiffCommand},
    {"footprint", AddFootprintCommand},
    {"preview", AddPreviewCommand},
    {"crs", AddCrsCommand},
    {"formats", AddFormatsCommand},
    {"ext", AddExtCommand}};

/// To make all commands with their options takes longer than some of them run. Where the first word
/// is one, only it is made, and info, which stands for no command.
void AddCommands(CLI::App& app, ExitStatus& status, std::string_view first_word) {
    const bool is_command = std::ranges::count(kCommands, first_word, [](const auto& command) {
                                return std::string_view(command.first);
                            }) != 0;
    for (const auto& [name, add] : kCommands)
        if (!is_command || name == first_word || add == AddInfoCommand) add(app, status);
}

ExitStatus RunProgram(int argc, char** argv) {
    CLI::App app(kDescription, "mapanchor");
    ExitStatus status = ExitStatus::Done;
    bool schema = false;
    app.formatter(std::make_shared<HelpFormatter>());
    app.set_help_flag("-h,--help", "Show this help");
    app.set_version_flag("-V,--version", "mapanchor " MAPANCHOR_VERSION, "Show the version");
    app.add_flag("--json-schema", schema, "Print the schema of the JSON output");
    std::string generate;
    app.add_option("--generate", generate)->group("")->check(CLI::IsMember({"man", "bash", "zsh"}));
    AddCommands(app, status, argc > 1 ? argv[1] : "");
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

/// PROJ and GDAL fill some megabytes of the heap as they start. A heap that grows in large steps and in huge
/// pages takes them with a few page faults instead of a thousand, which cost as much as the rest of a short
/// run where the machine is a virtual one. Where there are no huge pages this does nothing.
void PrepareHeap() {
#ifdef __GLIBC__
    constexpr std::size_t kHugePage = std::size_t{2} << 20;
    constexpr std::size_t kStep = 4 * kHugePage;
    constexpr std::size_t kLargestOnHeap = std::size_t{1} << 20;  // by default it follows the allocations
    if (mallopt(M_TOP_PAD, static_cast<int>(kStep)) == 0 ||
        mallopt(M_MMAP_THRESHOLD, static_cast<int>(kLargestOnHeap)) == 0 ||
        mallopt(M_TRIM_THRESHOLD, static_cast<int>(2 * kStep)) == 0)
        return;
    void* const grown = std::malloc(kLargestOnHeap / 2);
    const auto end = reinterpret_cast<std::uintptr_t>(sbrk(0)) / kHugePage * kHugePage;
    const auto begin = (reinterpret_cast<std::uintptr_t>(grown) / kHugePage + 1) * kHugePage;
    if (grown && begin < end)
        static_cast<void>(madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE));
    std::free(grown);
#endif
}

/// Its answer is the status of the process.
ExitStatus RunGuarded(int argc, char** argv) {
    try {
        return RunProgram(argc, argv);
    } catch (const ReaderLeft&) {
        return ExitStatus::ReaderLeft;
    } catch (const std::exception& error) {
        Console(ColorMode::Never, false).Complain(std::string("mapanchor: error: ") + error.what());
        return ExitStatus::Error;
    }
}

}  // namespace

}  // namespace Tool

/// What libraries keep to the end of a process, such as PROJ's database and GDAL's drivers, the system
/// takes back faster than they do: that is a tenth of a short run. The build for debugging lets them, so
/// that leaks and coverage show.
int main(int argc, char** argv) {
    Tool::OpenClosedStreams();
    Tool::PrepareHeap();
    std::signal(SIGPIPE, SIG_IGN);  // a closed pipe is a write that fails
    const auto status = static_cast<int>(Tool::RunGuarded(argc, argv));
#ifdef NDEBUG
    std::fflush(nullptr);
    std::_Exit(status);
#else
    return status;
#endif
}
