#include "objects/SyntaxTracker.h"

#include <gtest/gtest.h>

#include <string>

namespace VellumLib {
namespace {

struct Case {
    const char* name;
    std::string text;
    int deepest;
    int left_open;
    std::uint64_t values;
};

const Case kCases[] = {
    {"dictionary_in_an_array", "[<</A 1>>]", 2, 0, 4},
    {"closers_in_a_string", "<</A(>>]\\)>>)", 1, 1, 3},
    {"parentheses_in_a_string", "<</A(a(>>)b)", 1, 1, 3},
    {"backslash_before_the_end", "<</A(\\\\)>>", 1, 0, 3},
    {"octal_before_the_end", "<</A(\\53)>>", 1, 0, 3},
    {"closer_in_a_comment", "<<%>>\n", 1, 1, 1},
    {"comment_that_ends_a_word", "<</A%>>\r1", 1, 1, 3},
    {"hexadecimal_string", "<<aa>>", 1, 0, 2},
    {"hexadecimal_string_in_an_array", "[<3e3e>]", 1, 0, 2},
    {"empty_hexadecimal_string", "[<>]", 1, 0, 2},
    {"less_signs_apart", "[< <]", 1, 1, 2},
    {"names_without_blanks", "<</A/B/C[]>>", 2, 0, 5},
    {"closer_without_opener", ">>]]1", 0, 0, 1},
};

TEST(SyntaxTracker, FollowsTheSyntax) {
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        SyntaxTracker tracker;
        int deepest = 0;
        for (const char byte : c.text) {
            tracker.Consume(static_cast<unsigned char>(byte));
            deepest = std::max(deepest, tracker.Depth());
        }
        EXPECT_EQ(deepest, c.deepest);
        EXPECT_EQ(tracker.Depth(), c.left_open);
        EXPECT_EQ(tracker.Values(), c.values);
    }
}

TEST(SyntaxTracker, KeepsTheOutermostDictionary) {
    SyntaxTracker tracker;
    tracker.KeepDictionaries(true);
    for (const char byte : std::string("trailer<</A<</B(>>)>>/C[1]>>"))
        tracker.Consume(static_cast<unsigned char>(byte));
    EXPECT_TRUE(tracker.TakeDictionaryClosed());
    EXPECT_FALSE(tracker.TakeDictionaryClosed());
    EXPECT_EQ(tracker.DictionaryText(), "<</A<</B(>>)>>/C[1]>>");
    EXPECT_EQ(tracker.Word(0), "trailer");
}

}  // namespace
}  // namespace VellumLib
