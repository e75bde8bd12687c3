#include "read/InputNames.h"

#include "terminal/TargetFile.h"

#include <cerrno>
#include <cstdio>
#include <stdexcept>

namespace Tool {

namespace {

/// The next name on stdin; false at the end. Throws std::runtime_error when stdin cannot be
/// read or holds no names.
bool ReadName(char mark, std::string& name) {
    name.clear();
    errno = 0;
    int c = 0;
    while ((c = getc_unlocked(stdin)) != EOF && c != mark) {
        if (name.size() == kMaxNameLength) throw std::runtime_error(TooLongName());
        name += static_cast<char>(c);
    }
    if (c == EOF && !std::feof(stdin)) throw std::runtime_error(UnreadableNames(errno));
    return c != EOF || !name.empty();
}

}  // namespace

std::string UnreadableNames(int error) {
    return "the names on standard input cannot be read: " +
           (error == EBADF ? std::string("it is closed") : ReasonOf(error));
}

std::string TooLongName() {
    return "the names on standard input cannot be read: one is longer than " +
           std::to_string(kMaxNameLength) +
           " bytes; end each name with a line end, or with NUL and give --null";
}

void ForEachInput(const std::vector<std::string>& names, bool nul_separated,
                  const std::function<void(const std::string& name)>& visit) {
    for (const std::string& name : names) {
        if (name != "-") {
            visit(name);
            continue;
        }
        for (std::string listed; ReadName(nul_separated ? '\0' : '\n', listed);) {
            if (!nul_separated && listed.ends_with('\r')) listed.pop_back();
            if (!listed.empty()) visit(listed);
        }
    }
}

}  // namespace Tool
