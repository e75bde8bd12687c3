#pragma once

#include <cstdio>
#include <stdexcept>
#include <string>
#include <string_view>

namespace Tool {

/// An output cannot be written any more.
class OutputLost : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The program that reads standard output went away, which is not an error of ours.
class ReaderLeft : public OutputLost {
public:
    using OutputLost::OutputLost;
};

enum class ColorMode { Auto, Always, Never };

/// Data to stdout, flushed with each call, talk to stderr. What it paints or says may come
/// from files and their names, and goes through Printable().
class Console {
public:
    explicit Console(ColorMode mode, bool quiet);

    /// `text` as it is. Throws OutputLost when it does not reach stdout.
    void Print(std::string_view text) const;
    /// A remark, unless the console is quiet.
    void Talk(std::string_view text) const;
    /// An error is said even then.
    void Complain(std::string_view text) const;

    std::string Bold(std::string_view text) const { return Paint("1", text); }
    std::string Dim(std::string_view text) const { return Paint("2", text); }

private:
    std::string Paint(const char* code, std::string_view text) const;

    bool color_;
    bool quiet_;
};

/// Writes and flushes; throws OutputLost, with `name` for the file, when that fails.
void WriteOut(std::FILE* file, std::string_view text, const std::string& name);

/// Standard streams that the caller closed are opened to what fails when it is used, so that
/// no file that is opened later takes their numbers. To be called first.
void OpenClosedStreams();

}  // namespace Tool
