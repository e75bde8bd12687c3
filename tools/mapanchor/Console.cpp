#include "Console.h"

#include <unistd.h>
#include <cstdio>
#include <cstdlib>

namespace {

bool WantsColor(ColorMode mode) {
    if (mode != ColorMode::Auto) return mode == ColorMode::Always;
    const char* no_color = std::getenv("NO_COLOR");
    return isatty(STDOUT_FILENO) && !(no_color && *no_color);
}

void WriteLine(std::string_view text) {
    const std::string line = std::string(text) + "\n";
    std::fwrite(line.data(), 1, line.size(), stderr);
}

}  // namespace

Console::Console(ColorMode mode, bool quiet) : color_(WantsColor(mode)), quiet_(quiet) {}

void Console::Print(std::string_view text) const {
    const bool written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
    if (!written || std::fflush(stdout) != 0) throw OutputLost("standard output cannot be written");
}

void Console::Talk(std::string_view text) const {
    if (!quiet_) WriteLine(text);
}

void Console::Complain(std::string_view text) const {
    WriteLine(text);
}

std::string Console::Paint(const char* code, std::string_view text) const {
    if (!color_) return std::string(text);
    return "\x1b[" + std::string(code) + "m" + std::string(text) + "\x1b[0m";
}
