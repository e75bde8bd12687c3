#include "terminal/Console.h"

#include "terminal/TargetFile.h"

#include <Tellurion/Printable.h>

#include <fcntl.h>
#include <unistd.h>
#include <cerrno>
#include <cstdlib>

namespace Tool {

using Tellurion::Printable;

namespace {

bool WantsColor(ColorMode mode) {
    if (mode != ColorMode::Auto) return mode == ColorMode::Always;
    const char* no_color = std::getenv("NO_COLOR");
    return isatty(STDOUT_FILENO) && !(no_color && *no_color);
}

void WriteLine(std::string_view text) {
    const std::string line = Printable(text) + "\n";
    std::fwrite(line.data(), 1, line.size(), stderr);
}

}  // namespace

Console::Console(ColorMode mode, bool quiet) : color_(WantsColor(mode)), quiet_(quiet) {}

void Console::Print(std::string_view text) const {
    WriteOut(stdout, text, "standard output");
}

void Console::Talk(std::string_view text) const {
    if (!quiet_) WriteLine(text);
}

void Console::Complain(std::string_view text) const {
    WriteLine(text);
}

std::string Console::Paint(const char* code, std::string_view text) const {
    const std::string printable = Printable(text);
    return color_ ? "\x1b[" + std::string(code) + "m" + printable + "\x1b[0m" : printable;
}

void WriteOut(std::FILE* file, std::string_view text, const std::string& name) {
    if (std::fwrite(text.data(), 1, text.size(), file) == text.size() && std::fflush(file) == 0) return;
    const int error = errno;
    if (error == EPIPE) throw ReaderLeft(name + " is not read any more");
    throw OutputLost(name + " cannot be written: " + ReasonOf(error));
}

void OpenClosedStreams() {
    constexpr int kModes[] = {O_WRONLY, O_RDONLY, O_WRONLY};
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream)
        if (fcntl(stream, F_GETFD) < 0) open("/dev/null", kModes[stream]);
}

}  // namespace Tool
