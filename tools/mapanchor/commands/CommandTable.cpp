#include "commands/CommandTable.h"

#include <algorithm>
#include <sstream>

namespace Tool {

namespace {

std::vector<std::string> SplitAt(const std::string& text, const std::string& between) {
    std::vector<std::string> parts;
    std::size_t start = 0;
    for (std::size_t end; (end = text.find(between, start)) != std::string::npos;
         start = end + between.size())
        parts.push_back(text.substr(start, end - start));
    parts.push_back(text.substr(start));
    return parts;
}

bool IsWord(const std::string& text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](unsigned char c) {
        return std::isalnum(c) || c == '-' || c == '_' || c == '.';
    });
}

/// The words of "{a,b}" or "value in {a->0,b->1} OR {0,1}", which validators print.
std::vector<std::string> ChoicesOfValidator(const std::string& text) {
    const std::size_t open = text.find('{');
    const std::size_t close = text.find('}', open);
    if (open == std::string::npos || close == std::string::npos) return {};
    std::vector<std::string> words = SplitAt(text.substr(open + 1, close - open - 1), ",");
    for (std::string& word : words)
        word.resize(std::min(word.find("->"), word.size()));
    return words;
}

/// The words of a description that ends in a list: "Read as this kind: wld, rsf".
std::vector<std::string> ChoicesOfDescription(const std::string& text) {
    const std::size_t colon = text.rfind(": ");
    if (colon == std::string::npos) return {};
    std::vector<std::string> words = SplitAt(text.substr(colon + 2), ", ");
    const bool list = words.size() > 1 && std::all_of(words.begin(), words.end(), IsWord);
    return list ? words : std::vector<std::string>();
}

OptionRow RowOf(const CLI::Option& option) {
    OptionRow row;
    row.positional = option.get_positional();
    row.required = option.get_required();
    row.repeated = option.get_expected_max() > 1;
    row.description = option.get_description();
    row.heading = option.get_group();
    for (const CLI::Option* other : option.get_excludes())
        row.excludes.push_back(other->get_name());
    for (const std::string& name : option.get_snames())
        row.names.push_back("-" + name);
    for (const std::string& name : option.get_lnames())
        row.names.push_back("--" + name);
    if (row.positional) row.names = {option.get_name(true)};
    if (option.get_items_expected_max() == 0) return row;
    const std::vector<std::string> type = SplitAt(option.get_type_name(), ":");
    row.value = row.positional ? row.names[0] : type[0];
    row.choices = ChoicesOfValidator(option.get_type_name());
    if (row.choices.empty()) row.choices = ChoicesOfDescription(row.description);
    return row;
}

/// Values of one name have one set of words, wherever it is written.
void ShareChoices(std::vector<OptionRow>& options) {
    for (OptionRow& row : options) {
        if (row.positional || row.value.empty() || !row.choices.empty()) continue;
        for (const OptionRow& other : options)
            if (other.value == row.value && !other.choices.empty()) row.choices = other.choices;
    }
}

CommandRow CommandOf(const CLI::App& app) {
    CommandRow row;
    row.name = app.get_name();
    row.paragraphs = SplitAt(app.get_description(), "\n\n");
    row.summary = row.paragraphs.front();
    row.paragraphs.erase(row.paragraphs.begin());
    for (const CLI::Option* option : app.get_options())
        if (!option->get_group().empty()) row.options.push_back(RowOf(*option));
    ShareChoices(row.options);
    return row;
}

}  // namespace

bool OptionRow::TakesFile() const {
    if (positional) return value != "TEXT";
    if (!choices.empty()) return false;
    for (const char* word : {"FILE", "NAME", "DIR", "FOLDER", "PATH", "JSONL", "GPKG"})
        if (value.find(word) != std::string::npos) return true;
    return false;
}

std::string OptionRow::Described() const {
    std::string text = description;
    const bool listed = std::ranges::all_of(
        choices, [&text](const std::string& choice) { return text.find(choice) != std::string::npos; });
    if (!listed) text += ": " + Join(choices, ", ");
    if (!excludes.empty()) text += "; not with " + Join(excludes, ", ");
    return text;
}

std::string OptionRow::Usage() const {
    const std::string name = names[0] + (repeated ? "..." : "");
    return required ? name : "[" + name + "]";
}

CommandTable::CommandTable(const CLI::App& app) : program(CommandOf(app)) {
    for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; }))
        if (!command->get_group().empty()) commands.push_back(CommandOf(*command));
}

std::string Join(const std::vector<std::string>& words, const std::string& between) {
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : between) + word;
    return text;
}

}  // namespace Tool
