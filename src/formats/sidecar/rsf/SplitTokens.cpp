#include "sidecar/rsf/SplitTokens.h"

namespace MapAnchor {
namespace {

char* Skip(char* text, const Delimiters& delimiters) {
    while (delimiters.Hold(*text))
        ++text;
    return text;
}

}  // namespace

std::size_t SplitTokens(char* text, const Delimiters& delimiters, char** tokens, std::size_t most) {
    if (most == 0) return 0;
    std::size_t count = 0;
    char* at = Skip(text, delimiters);
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
            at = Skip(at + 1, delimiters);
            if (*at == '\0') return count;
            tokens[count] = at;
        } else {
            ++at;
        }
    }
    return count + 1;
}

}  // namespace MapAnchor
