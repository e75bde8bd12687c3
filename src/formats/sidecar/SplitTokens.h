#pragma once

#include <cstddef>

namespace MapAnchor {

/// Cuts a narrow text into fields, in place: `tokens` receives pointers into it, each
/// a terminated text. Runs of `delimiters` part the fields; a stretch in double quotes
/// is one field without its quotes. Stops at `most` tokens. The count of tokens; a
/// text of delimiters alone has none.
std::size_t SplitTokens(char* text, const char* delimiters, char** tokens, std::size_t most);

}  // namespace MapAnchor
