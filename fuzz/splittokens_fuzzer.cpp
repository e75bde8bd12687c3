// The tokeniser: the first byte is the limit, the rest the text. Every token must lie
// inside the text, end there, and stand behind the one before it.

#include "sidecar/rsf/SplitTokens.h"

#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kMost = 40;
    if (size == 0) return 0;
    const std::size_t most = data[0] % (kMost + 1);
    std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
    std::array<char*, kMost> tokens{};
    for (const char* delimiters : {"( ,)", "( ,)="}) {
        std::string copy = text.c_str();
        const std::size_t count =
            MapAnchor::SplitTokens(copy.data(), MapAnchor::Delimiters(delimiters), tokens.data(), most);
        if (count > most) std::abort();
        const char* previous = copy.data();
        for (std::size_t i = 0; i < count; ++i) {
            if (tokens[i] < previous) std::abort();
            previous = tokens[i] + std::strlen(tokens[i]);
            if (previous > copy.data() + copy.size()) std::abort();
        }
    }
    return 0;
}
