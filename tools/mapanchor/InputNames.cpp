#include "InputNames.h"

#include "TargetFile.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>

namespace {

/// A line of stdin, of any length.
class Line {
public:
    ~Line() { std::free(text_); }
    Line() = default;
    Line(const Line&) = delete;
    Line& operator=(const Line&) = delete;

    /// False at the end; throws std::runtime_error when stdin cannot be read.
    bool Read(char mark) {
        errno = 0;
        length_ = getdelim(&text_, &room_, mark, stdin);
        if (length_ < 0 && !std::feof(stdin)) throw std::runtime_error(UnreadableNames(errno));
        if (length_ > 0 && text_[length_ - 1] == mark) --length_;
        return length_ >= 0;
    }
    std::string Text() const { return {text_, static_cast<std::size_t>(length_)}; }

private:
    char* text_ = nullptr;
    std::size_t room_ = 0;
    ssize_t length_ = 0;
};

}  // namespace

std::string UnreadableNames(int error) {
    return "the names on standard input cannot be read: " +
           (error == EBADF ? std::string("it is closed") : ReasonOf(error));
}

void ForEachInput(const std::vector<std::string>& names, bool nul_separated,
                  const std::function<void(const std::string& name)>& visit) {
    for (const std::string& name : names) {
        if (name != "-") {
            visit(name);
            continue;
        }
        for (Line line; line.Read(nul_separated ? '\0' : '\n');) {
            std::string listed = line.Text();
            if (!nul_separated && listed.ends_with('\r')) listed.pop_back();
            if (!listed.empty()) visit(listed);
        }
    }
}
