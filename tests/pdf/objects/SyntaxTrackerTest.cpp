#include "load/SyntaxTracker.h"

#include <gtest/gtest.h>

namespace VellumLib {
namespace {

struct Case {
    const char* text;
    int max_depth;
    int left_open;
    std::uint64_t values;
};

TEST(SyntaxTracker, FollowsTheSyntax) {
    const Case cases[] = {
        {"[<</A 1>>]", 2, 0, 4},
        // Strings: closers, parentheses, and what a backslash escapes.
        {"<</A(>>]\\)>>)", 1, 1, 3},
        {"<</A(a(>>)b)", 1, 1, 3},
        {"<</A(\\\\)>>", 1, 0, 3},
        {"<</A(\\53)>>", 1, 0, 3},
        // Comments.
        {"<<% >>\n", 1, 1, 1},
        {"<</A% >>\r1", 1, 1, 3},
        // Hexadecimal strings.
        {"<<aa>>", 1, 0, 2},
        {"[<3e3e>]", 1, 0, 2},
        {"[<>]", 1, 0, 2},
        {"[< <]", 1, 1, 2},
        {"<</A/B/C[]>>", 2, 0, 5},
        {">>]]1", 0, 0, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        SyntaxTracker tracker;
        int max_depth = 0;
        for (const char byte : std::string(c.text)) {
            tracker.Consume(static_cast<unsigned char>(byte));
            max_depth = std::max(max_depth, tracker.Depth());
        }
        EXPECT_EQ(max_depth, c.max_depth);
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
