#include "commands/Generate.h"

#include <algorithm>

namespace Tool {

namespace {

std::vector<std::string> Names(const std::vector<CommandRow>& commands) {
    std::vector<std::string> names;
    names.reserve(commands.size());
    for (const CommandRow& command : commands)
        names.push_back(command.name);
    return names;
}

std::vector<std::string> Flags(const CommandRow& command) {
    std::vector<std::string> names;
    for (const OptionRow& option : command.options)
        if (!option.positional) names.insert(names.end(), option.names.begin(), option.names.end());
    return names;
}

bool CompletesFiles(const CommandRow& command) {
    return std::any_of(command.options.begin(), command.options.end(),
                       [](const OptionRow& option) { return option.positional && option.TakesFile(); });
}

/// The arm of the case that completes an option's value.
std::string BashValue(const CommandRow& command, const OptionRow& option) {
    std::vector<std::string> patterns;
    for (const std::string& name : option.names)
        patterns.push_back("'" + command.name + " " + name + "'");
    std::string arm = "        " + Join(patterns, "|") + ") ";
    if (!option.choices.empty())
        arm += "_mapanchor_words '" + Join(option.choices, " ") + "'; ";
    else if (option.TakesFile())
        arm += "_mapanchor_files; ";
    return arm + "return ;;\n";
}

std::string BashValues(const CommandRow& command) {
    std::string arms;
    for (const OptionRow& option : command.options)
        if (!option.positional && !option.value.empty()) arms += BashValue(command, option);
    return arms;
}

std::string BashWords(const CommandTable& table, const CommandRow& command) {
    std::vector<std::string> flags = Flags(command);
    if (command.name != "info") return Join(flags, " ");
    // Without a command the options of info serve beside the program's own.
    for (const std::string& name : Flags(table.program))
        if (std::find(flags.begin(), flags.end(), name) == flags.end()) flags.push_back(name);
    return Join(flags, " ");
}

constexpr const char* kBashHead = R"(# Bash completion of mapanchor.

_mapanchor_words() {
    mapfile -t COMPREPLY < <(compgen -W "$1" -- "$current")
}

_mapanchor_files() {
    local files
    mapfile -t files < <(compgen -f -- "$current")
    COMPREPLY+=("${files[@]}")
    compopt -o filenames 2>/dev/null
}

_mapanchor() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local command=info given=no i
    COMPREPLY=()
    # "--fit=affine" arrives in three words.
    if [[ $current == = ]]; then
        current=
    elif [[ $previous == = ]]; then
        previous=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    for ((i = 1; i < COMP_CWORD; i++)); do
        case ${COMP_WORDS[i]} in
)";

std::string Quoted(const std::string& text, const std::string& special) {
    std::string out;
    for (const char c : text) {
        if (c == '\'')
            out += "'\\''";
        else if (special.find(c) != std::string::npos)
            out += std::string("\\") + c;
        else
            out += c;
    }
    return out;
}

std::string ZshAction(const OptionRow& option) {
    if (!option.choices.empty()) return "(" + Join(option.choices, " ") + ")";
    return option.TakesFile() ? "_files" : " ";
}

std::string ZshOption(const OptionRow& option) {
    const std::string description = Quoted(option.description, "[]:\\");
    const std::string value =
        option.value.empty() ? "" : ":" + Quoted(option.value, ":\\") + ":" + ZshAction(option);
    if (option.positional)
        return "'" + std::string(option.repeated ? "*" : "") + ":" + Quoted(option.value, ":\\") + ":" +
               ZshAction(option) + "'";
    const std::string instead = option.names.size() > 1 ? "(" + Join(option.names, " ") + ")" : "";
    std::string spec;
    for (const std::string& name : option.names)
        spec.append(spec.empty() ? "'" : " \\\n        '")
            .append(instead)
            .append(name)
            .append("[")
            .append(description)
            .append("]")
            .append(value)
            .append("'");
    return spec;
}

std::string ZshFunction(const std::string& name, const std::vector<OptionRow>& options) {
    std::string out = name + "() {\n    _arguments -s";
    for (const OptionRow& option : options)
        out += " \\\n        " + ZshOption(option);
    return out + "\n}\n\n";
}

std::vector<OptionRow> WithoutCommand(const CommandTable& table) {
    std::vector<OptionRow> options = table.program.options;
    for (const CommandRow& command : table.commands)
        if (command.name == "info")
            for (const OptionRow& option : command.options)
                if (std::find(options.begin(), options.end(), option) == options.end())
                    options.push_back(option);
    return options;
}

}  // namespace

std::string BashCompletion(const CommandTable& table) {
    std::string out = kBashHead;
    out += "            " + Join(Names(table.commands), " | ") + ")\n";
    out +=
        "                command=${COMP_WORDS[i]} given=yes\n                break ;;\n        esac\n    "
        "done\n";
    out += "    case \"$command $previous\" in\n";
    for (const CommandRow& command : table.commands)
        out += BashValues(command);
    out += "    esac\n    if [[ $current == -* ]]; then\n        case $command in\n";
    for (const CommandRow& command : table.commands)
        out += "            " + command.name + ") _mapanchor_words '" + BashWords(table, command) + "' ;;\n";
    out += "        esac\n        return\n    fi\n";
    out += "    [[ $given == yes ]] || _mapanchor_words '" + Join(Names(table.commands), " ") + "'\n";
    out += "    case $command in\n";
    for (const CommandRow& command : table.commands)
        if (CompletesFiles(command)) out += "        " + command.name + ") _mapanchor_files ;;\n";
    return out + "    esac\n}\n\ncomplete -F _mapanchor mapanchor\n";
}

std::string ZshCompletion(const CommandTable& table) {
    std::string out = "#compdef mapanchor\n\n";
    for (const CommandRow& command : table.commands)
        out += ZshFunction("_mapanchor_" + command.name, command.options);
    out += ZshFunction("_mapanchor_without", WithoutCommand(table));
    out += "_mapanchor() {\n    local -a commands=(";
    for (const CommandRow& command : table.commands)
        out += "\n        '" + command.name + ":" + Quoted(command.summary, ":\\") + "'";
    out +=
        "\n    )\n    local -i at\n    for ((at = 2; at < CURRENT; at++)); do\n        case $words[at] in\n";
    out += "            " + Join(Names(table.commands), "|") + ")\n";
    out +=
        "                local command=$words[at]\n                words=(\"${(@)words[at,-1]}\")\n"
        "                ((CURRENT -= at - 1))\n                _mapanchor_$command\n                return "
        ";;\n";
    out +=
        "        esac\n    done\n"
        "    [[ $words[CURRENT] == -* ]] || _describe command commands\n"
        "    _mapanchor_without\n}\n\n_mapanchor \"$@\"\n";
    return out;
}

}  // namespace Tool
