#include <gtest/gtest.h>

#include "sidecar/SplitTokens.h"

#include <array>
#include <string>
#include <vector>

namespace MapAnchor {
namespace {

using Tokens = std::vector<std::string>;

Tokens Split(std::string text, std::size_t most = 32) {
    std::array<char*, 32> tokens{};
    const std::size_t count = SplitTokens(text.data(), "( ,)", tokens.data(), most);
    return {tokens.begin(), tokens.begin() + static_cast<std::ptrdiff_t>(count)};
}

struct SplitCase {
    const char* name;
    const char* text;
    Tokens tokens;
};

TEST(SplitTokens, CutsWhereItShould) {
    const SplitCase cases[] = {
        {"empty", "", {}},
        {"delimiters_alone", " ,()", {}},
        {"lone_quote", "\"", {}},
        {"quote_behind_a_delimiter", "a \"", {"a", ""}},
        {"point_line",
         "  (1.5, 2.5) (3, 4) Label \"P 1, (x)\",",
         {"1.5", "2.5", "3", "4", "Label", "P 1, (x)"}},
        {"no_blanks", "(1,2)(3,4)Label\"P\"", {"1", "2", "3", "4", "P"}},
        {"quoted_front", "\"a b\" c", {"a b", "c"}},
        {"empty_quotes_in_front", "\"\" c", {"", "c"}},
        {"empty_quotes_at_the_end", "a \"\"", {"a", ""}},
        {"quote_without_end", "a \"b c", {"a", "b c"}},
        {"text_behind_a_quote", "\"a\"b c", {"a", "c"}},
        {"quote_inside_a_word_drops_its_front", "ab\"c d\" e", {"c d", "e"}},
        {"trailing_delimiters", "a b ,)", {"a", "b"}},
        {"other_blanks_are_no_delimiters", "a\tb c", {"a\tb", "c"}},
    };
    for (const SplitCase& test : cases)
        EXPECT_EQ(Split(test.text), test.tokens) << test.name;
}

TEST(SplitTokens, StopsAtTheLimit) {
    EXPECT_EQ(Split("a b c d", 2), (Tokens{"a", "b"}));
    EXPECT_EQ(Split("a b", 2), (Tokens{"a", "b"}));
    EXPECT_EQ(Split("a \"b", 1), (Tokens{"a"}));
    EXPECT_EQ(Split("a", 0), Tokens{});
    std::string many;
    for (int i = 0; i < 1000; ++i)
        many += "x ";
    EXPECT_EQ(Split(many).size(), 32U);
}

}  // namespace
}  // namespace MapAnchor
