#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace MapAnchor {

/// Characters that are looked up as a table; the end of a text is not among them.
class Delimiters {
public:
    constexpr explicit Delimiters(std::string_view characters) {
        for (const char c : characters)
            member_[static_cast<unsigned char>(c)] = true;
    }
    constexpr bool Hold(char c) const { return member_[static_cast<unsigned char>(c)]; }

private:
    std::array<bool, 256> member_{};
};

/// Cuts a narrow text into fields, in place: `tokens` receives pointers into it, each
/// a terminated text. Runs of `delimiters` part the fields; a stretch in double quotes
/// is one field without its quotes. Stops at `most` tokens. The count of tokens; a
/// text of delimiters alone has none.
std::size_t SplitTokens(char* text, const Delimiters& delimiters, char** tokens, std::size_t most);

}  // namespace MapAnchor
