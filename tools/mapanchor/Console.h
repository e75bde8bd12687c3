#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

/// Standard output cannot be written any more.
class OutputLost : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

enum class ColorMode { Auto, Always, Never };

/// Data to stdout, flushed with each call, talk to stderr.
class Console {
public:
    explicit Console(ColorMode mode, bool quiet);

    /// Throws OutputLost when the text does not reach stdout.
    void Print(std::string_view text) const;
    /// A line of talk, unless told to be quiet.
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
