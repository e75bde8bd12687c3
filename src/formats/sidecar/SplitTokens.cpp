#include "sidecar/SplitTokens.h"

namespace MapAnchor {
namespace {

/// Never asked for the end of the text.
bool IsOneOf(char c, const char* delimiters) {
    while (*delimiters != '\0' && *delimiters != c)
        ++delimiters;
    return *delimiters != '\0';
}

char* SkipDelimiters(char* text, const char* delimiters) {
    while (*text != '\0' && IsOneOf(*text, delimiters))
        ++text;
    return text;
}

}  // namespace

std::size_t SplitTokens(char* text, const char* delimiters, char** tokens, std::size_t most) {
    if (most == 0) return 0;
    std::size_t count = 0;
    char* at = SkipDelimiters(text, delimiters);
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
        } else if (IsOneOf(*at, delimiters)) {
            *at = '\0';
            if (++count == most) return count;
            at = SkipDelimiters(at + 1, delimiters);
            if (*at == '\0') return count;
            tokens[count] = at;
        } else {
            ++at;
        }
    }
    return count + 1;
}

}  // namespace MapAnchor
