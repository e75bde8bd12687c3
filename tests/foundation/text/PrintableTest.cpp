#include <Tellurion/Printable.h>

#include <gtest/gtest.h>

namespace Tellurion {
namespace {

TEST(Printable, EscapesWhatSteersAndKeepsTheRest) {
    const struct {
        const char* text;
        const char* printable;
        const char* json;
    } rows[] = {
        {"plain \\ \t", "plain \\ \t", "plain \\ \t"},
        {"\xC3\xBC\xE6\xB1\x89\xF0\x9F\x98\x80\xD7\x90", "\xC3\xBC\xE6\xB1\x89\xF0\x9F\x98\x80\xD7\x90",
         "\xC3\xBC\xE6\xB1\x89\xF0\x9F\x98\x80\xD7\x90"},
        {"a\n\r\x1B[0m\x7F", "a\\n\\r\\x1b[0m\\x7f", "a\n\\u000d\\u001b[0m\\u007f"},
        {"\xC2\x85\xC2\x9F\xC2\xA0", "\\u0085\\u009f\xC2\xA0", "\\u0085\\u009f\xC2\xA0"},
        {"\xD8\x9C\xE2\x80\x8F\xE2\x80\xA9\xE2\x81\xA7", "\\u061c\\u200f\\u2029\\u2067",
         "\\u061c\\u200f\\u2029\\u2067"},
        {"\xEF\xBF\xBD\xEF\xBF\xBE\xF3\xA0\x81\x81", "\xEF\xBF\xBD\\ufffe\\U000e0041",
         "\xEF\xBF\xBD\\ufffe\\udb40\\udc41"},
        {"\xC0\x8A\xED\xA0\x80\xE9", "\\xc0\\x8a\\xed\\xa0\\x80\\xe9",
         "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Printable(row.text), row.printable);
        EXPECT_EQ(PrintableJson(row.text), row.json);
    }
}

}  // namespace
}  // namespace Tellurion
