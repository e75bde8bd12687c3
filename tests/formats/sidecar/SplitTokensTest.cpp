#include <gtest/gtest.h>

#include "sidecar/SplitTokens.h"

#include <array>
#include <string>
#include <vector>

namespace MapAnchor {
namespace {

using Tokens = std::vector<std::string>;

Tokens Split(std::string text, std::size_t limit = 32) {
    std::array<char*, 32> tokens{};
    const std::size_t count = SplitTokens(text.data(), Delimiters("( ,)"), tokens.data(), limit);
    return {tokens.begin(), tokens.begin() + static_cast<std::ptrdiff_t>(count)};
}

TEST(SplitTokens, CutsAtDelimitersAndQuotes) {
    const std::pair<const char*, Tokens> cases[] = {
        {"", {}},
        {" ,()", {}},
        {"\"", {}},
        {"a \"", {"a", ""}},
        {"  (1.5, 2.5) (3, 4) Label \"P 1, (x)\",", {"1.5", "2.5", "3", "4", "Label", "P 1, (x)"}},
        {"(1,2)(3,4)Label\"P\"", {"1", "2", "3", "4", "P"}},
        {"\"a b\" c", {"a b", "c"}},
        {"\"\" c", {"", "c"}},
        {"a \"\"", {"a", ""}},
        {"a \"b c", {"a", "b c"}},
        {"\"a\"b c", {"a", "c"}},
        {"a b ,)", {"a", "b"}},
        {"a\tb c", {"a\tb", "c"}}};
    for (const auto& [text, tokens] : cases)
        EXPECT_EQ(Split(text), tokens) << text;
    EXPECT_EQ(Split("a b c d", 2), (Tokens{"a", "b"}));
    EXPECT_EQ(Split("a \"b", 1), (Tokens{"a"}));
    EXPECT_EQ(Split("a", 0), Tokens{});
}

}  // namespace
}  // namespace MapAnchor
