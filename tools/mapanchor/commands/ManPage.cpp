#include "commands/Generate.h"

#include <algorithm>

namespace Tool {

namespace {

constexpr const char* kClosing = R"(.SH EXIT STATUS
.TP
.B 0
All done.
.TP
.B 2
Error; nothing usable.
.TP
.B 3
Succeeded with warnings, or some of several inputs failed (see their rows).
.TP
.B 4
Read, but the file carries no georeference.
.TP
.B 5
Refused: unsupported, encrypted, or a driver is missing.
.TP
.B 64
Wrong usage.
.SH ENVIRONMENT
.TP
.B NO_COLOR
When it is set and not empty, nothing is coloured unless
.B \-\-color always
asks for it.
.SH SEE ALSO
.BR gdalinfo (1),
.BR projinfo (1)
)";

/// Text that troff prints as it is.
std::string Escaped(const std::string& text) {
    std::string out;
    for (const char c : text) {
        const bool line_start = out.empty() || out.back() == '\n';
        if (line_start && (c == '.' || c == '\'')) out += "\\&";
        if (c == '\\')
            out += "\\e";
        else if (c == '-')
            out += "\\-";
        else if (c == '\'')
            out += "\\(aq";
        else
            out += c;
    }
    return out;
}

std::string Paragraph(const std::string& text) {
    std::string out = ".PP\n";
    bool as_is = false;
    for (std::size_t start = 0; start <= text.size();) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        const std::string line = text.substr(start, end - start);
        const bool indented = line.compare(0, 2, "  ") == 0;
        if (indented != as_is) out += indented ? ".nf\n" : ".fi\n";
        as_is = indented;
        out += Escaped(line) + "\n";
        start = end + 1;
    }
    return as_is ? out + ".fi\n" : out;
}

std::string Paragraphs(const CommandRow& command) {
    std::string out;
    for (const std::string& paragraph : command.paragraphs)
        out += Paragraph(paragraph);
    return out;
}

std::string Item(const OptionRow& option) {
    std::vector<std::string> names;
    for (const std::string& name : option.names)
        names.push_back((option.positional ? "\\fI" : "\\fB") + Escaped(name) + "\\fR");
    std::string out = ".TP\n" + Join(names, ", ");
    if (!option.positional && !option.value.empty()) out += " \\fI" + Escaped(option.value) + "\\fR";
    return out + "\n" + Escaped(option.Described()) + "\n";
}

std::string Synopsis(const std::string& words, const CommandRow& command) {
    std::string out = ".B " + Escaped(words) + "\n[\\fIOPTIONS\\fR]";
    for (const OptionRow& option : command.options) {
        if (!option.positional) continue;
        const std::string name = "\\fI" + Escaped(option.names[0]) + "\\fR" + (option.repeated ? "..." : "");
        out += option.required ? " " + name : " [" + name + "]";
    }
    return out + "\n";
}

bool InAll(const std::vector<CommandRow>& commands, const OptionRow& option) {
    return std::all_of(commands.begin(), commands.end(), [&option](const CommandRow& command) {
        return std::find(command.options.begin(), command.options.end(), option) != command.options.end();
    });
}

std::string Command(const CommandTable& table, const CommandRow& command) {
    std::string out = ".SS " + Escaped(command.name) + "\n" + Synopsis("mapanchor " + command.name, command);
    out += ".PP\n" + Escaped(command.summary) + ".\n" + Paragraphs(command);
    for (const OptionRow& option : command.options)
        if (!InAll(table.commands, option)) out += Item(option);
    return out;
}

std::string CommonItems(const CommandTable& table) {
    std::string out = ".SH OPTIONS OF EVERY COMMAND\n";
    for (const OptionRow& option : table.commands.front().options)
        if (InAll(table.commands, option)) out += Item(option);
    return out;
}

}  // namespace

std::string ManPage(const CommandTable& table) {
    std::string out = ".TH MAPANCHOR 1 \"\" \"mapanchor " MAPANCHOR_VERSION "\" \"User Commands\"\n";
    out += ".SH NAME\nmapanchor \\- " + Escaped(CLI::detail::to_lower(table.program.summary.substr(0, 1)) +
                                                table.program.summary.substr(1));
    out += "\n.SH SYNOPSIS\n.B mapanchor\n[\\fIOPTIONS\\fR] \\fIFILE\\fR...\n";
    for (const CommandRow& command : table.commands)
        out += ".br\n" + Synopsis("mapanchor " + command.name, command);
    out += ".SH DESCRIPTION\nWithout a command, \n.B mapanchor info\nis meant.\n" + Paragraphs(table.program);
    for (const OptionRow& option : table.program.options)
        if (!InAll(table.commands, option)) out += Item(option);
    out += ".SH COMMANDS\n";
    for (const CommandRow& command : table.commands)
        out += Command(table, command);
    return out + CommonItems(table) + kClosing;
}

}  // namespace Tool
