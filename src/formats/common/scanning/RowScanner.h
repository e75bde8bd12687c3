#pragma once

#include <cstdint>
#include <string_view>

namespace MapAnchor {

/// Reads fields off the front of a row of text by the rules of sscanf, but for the
/// locale: the decimal mark is a point. Each operation skips the white space before
/// its field; one that fails leaves the row where it was.
class RowScanner {
public:
    explicit RowScanner(std::string_view row) : rest_(row) {}

    /// A whole number, as "%d"; clamped to 32 bits.
    bool Whole(std::int32_t& value);
    /// As "%lf".
    bool Real(double& value);
    /// This very text.
    bool Literal(std::string_view text);
    void SkipBlanks();

    std::string_view Rest() const { return rest_; }

private:
    std::string_view rest_;
};

}  // namespace MapAnchor
