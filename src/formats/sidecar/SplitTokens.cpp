#include "sidecar/SplitTokens.h"

#include <array>

namespace MapAnchor {
namespace {

/// Looked up by character; the end of the text is no member.
class Delimiters {
public:
    explicit Delimiters(const char* characters) {
        for (; *characters != '\0'; ++characters)
            member_[static_cast<unsigned char>(*characters)] = true;
    }
    bool Hold(char c) const { return member_[static_cast<unsigned char>(c)]; }
    char* Skip(char* text) const {
        while (Hold(*text))
            ++text;
        return text;
    }

private:
    std::array<bool, 256> member_{};
};

}  // namespace

std::size_t SplitTokens(char* text, const char* characters, char** tokens, std::size_t most) {
    if (most == 0) return 0;
    const Delimiters delimiters(characters);
    std::size_t count = 0;
    char* at = delimiters.Skip(text);
    bool quoted = *at == '"';
    if (quoted) ++at;
    tokens[0] = at;
    if (*at == '\0') return 0;
    while (*at != '\0') {
        if (quoted) {
            quoted = *at != '"';
            if (!quoted) *at = '\0';
            ++at;
        } else if (*at == '"') {
            *at++ = '\0';
            tokens[count] = at;
            quoted = true;
        } else if (delimiters.Hold(*at)) {
            *at = '\0';
            if (++count == most) return count;
            at = delimiters.Skip(at + 1);
            if (*at == '\0') return count;
            tokens[count] = at;
        } else {
            ++at;
        }
    }
    return count + 1;
}

}  // namespace MapAnchor
