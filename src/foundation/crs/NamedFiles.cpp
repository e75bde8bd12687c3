#include "crs/NamedFiles.h"

#include "crs/Names.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace Tellurion {
namespace {

using std::string_view;

constexpr auto kNone = string_view::npos;
constexpr string_view kBlanks = " \t\r\n";
constexpr string_view kOpenQuote = "\xE2\x80\x9C";
constexpr string_view kCloseQuote = "\xE2\x80\x9D";

bool IsPath(string_view name) {
    name.remove_prefix(std::min(name.find_first_not_of(" \t\r\n@\""), name.size()));
    return name.starts_with('~') || name.find_first_of("/\\") != kNone;
}

/// The first path of a list that commas part.
std::string PathIn(string_view list) {
    while (!list.empty()) {
        const string_view name = list.substr(0, list.find(','));
        if (IsPath(name)) return std::string(name);
        list.remove_prefix(std::min(name.size() + 1, list.size()));
    }
    return {};
}

/// Where a text in plain quotes ends: at a quote that is not doubled.
std::size_t EndOfQuoted(string_view text) {
    std::size_t at = text.find('"');
    while (at != kNone && text.substr(at).starts_with("\"\""))
        at = text.find('"', at + 2);
    return at;
}

/// The text in the next quotes, which may be typographic. Leaves what follows it.
string_view TakeQuoted(string_view& text) {
    const std::size_t plain = text.find('"');
    const std::size_t curved = text.find(kOpenQuote);
    const bool is_plain = plain <= curved;
    const std::size_t start = std::min(plain, curved);
    if (start == kNone) return {};
    text.remove_prefix(start + (is_plain ? 1 : kOpenQuote.size()));
    const string_view quoted = text.substr(0, is_plain ? EndOfQuoted(text) : text.find(kCloseQuote));
    text.remove_prefix(std::min(quoted.size() + 1, text.size()));
    return quoted;
}

/// The value behind the equals sign of a PROJ parameter. Blanks do not end it beside a comma.
string_view ValueOf(string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    if (text.starts_with('"')) {
        text.remove_prefix(std::min(text.find_first_not_of('"'), text.size()));
        return text.substr(0, text.find('"'));
    }
    constexpr string_view kEnds(" \t\r\n\"[]()<>|\0", 13);
    std::size_t end = text.find_first_of(kEnds);
    while (end != kNone && kBlanks.find(text[end]) != kNone) {
        const std::size_t next = text.find_first_not_of(kBlanks, end);
        const bool goes_on = next != kNone && (text[next] == ',' || (end > 0 && text[end - 1] == ','));
        if (!goes_on) break;
        end = text.find_first_of(kEnds, next + 1);
    }
    return text.substr(0, end);
}

/// True for the names of PROJ's parameters whose value is a file.
bool TakesFile(string_view key) {
    for (const string_view end : {"grids", "init", "file", "model", "catalog"})
        if (key.ends_with(end)) return true;
    return false;
}

/// `lower` is the same text in small letters.
std::string PathOfParameter(string_view text, string_view lower) {
    for (std::size_t at = lower.find('='); at != kNone; at = lower.find('=', at + 1)) {
        const string_view before = lower.substr(0, at);
        if (!TakesFile(before.substr(0, before.find_last_not_of(kBlanks) + 1))) continue;
        std::string path = PathIn(ValueOf(text.substr(at + 1)));
        if (!path.empty()) return path;
    }
    return {};
}

/// Of a node of well-known text; `skipped` texts in quotes come before the name of the file.
std::string PathOfNode(string_view text, string_view lower, string_view keyword, int skipped) {
    for (std::size_t at = lower.find(keyword); at != kNone; at = lower.find(keyword, at + 1)) {
        string_view rest = text.substr(at + keyword.size());
        for (int i = 0; i < skipped; ++i)
            TakeQuoted(rest);
        std::string path = PathIn(TakeQuoted(rest));
        if (!path.empty()) return path;
    }
    return {};
}

/// Of a parameter of a transformation in PROJJSON. An escape may hide anything.
std::string PathOfJson(string_view text, string_view lower) {
    if (lower.find("crs\"") == kNone || lower.find("\"parameters\"") == kNone) return {};
    if (lower.find("\\u") != kNone) return "\\u";
    constexpr string_view kKey = "\"value\"";
    for (std::size_t at = lower.find(kKey); at != kNone; at = lower.find(kKey, at + 1)) {
        string_view rest = text.substr(at + kKey.size());
        rest.remove_prefix(std::min(rest.find_first_not_of(" \t\r\n:"), rest.size()));
        if (!rest.starts_with('"')) continue;
        std::string path = PathIn(TakeQuoted(rest));
        if (!path.empty()) return path;
    }
    return {};
}

/// What an XML reference such as "&quot;" or "&#47;" stands for; `length` is its own.
std::optional<char> ReferredTo(string_view text, std::size_t& length) {
    constexpr std::size_t kLongest = 12;
    const std::size_t end = text.substr(0, kLongest).find(';');
    if (end == kNone) return std::nullopt;
    length = end + 1;
    string_view name = text.substr(1, end - 1);
    constexpr std::pair<string_view, char> kNames[] = {
        {"quot", '"'}, {"apos", '\''}, {"amp", '&'}, {"lt", '<'}, {"gt", '>'}};
    for (const auto& [known, character] : kNames)
        if (name == known) return character;
    if (!name.starts_with('#')) return std::nullopt;
    name.remove_prefix(1);
    const bool hexadecimal = name.starts_with('x') || name.starts_with('X');
    if (hexadecimal) name.remove_prefix(1);
    int code = 0;
    const auto result = std::from_chars(name.data(), name.data() + name.size(), code, hexadecimal ? 16 : 10);
    if (result.ec != std::errc() || result.ptr != name.data() + name.size() || code > 127 || code < 0)
        return std::nullopt;
    return static_cast<char>(code);
}

std::string WithoutReferences(string_view text) {
    std::string plain;
    while (!text.empty()) {
        const string_view before = text.substr(0, text.find('&'));
        plain += before;
        text.remove_prefix(before.size());
        if (text.empty()) break;
        std::size_t length = 1;
        const std::optional<char> character = ReferredTo(text, length);
        if (!character) length = 1;
        plain += character.value_or('&');
        text.remove_prefix(length);
    }
    return plain;
}

std::string Find(string_view text) {
    // Most texts hold no word by which one names a file.
    const std::string lower = LowerAscii(text);
    std::string path = PathOfParameter(text, lower);
    if (path.empty()) path = PathOfNode(text, lower, "proj4_grids\"", 0);
    if (path.empty()) path = PathOfNode(text, lower, "proj4_grids" + std::string(kCloseQuote), 0);
    if (path.empty()) path = PathOfNode(text, lower, "parameterfile", 1);
    return path.empty() ? PathOfJson(text, lower) : path;
}

}  // namespace

std::string FileNamedIn(string_view text) {
    if (text.find('&') != kNone && text.find(';') != kNone) return Find(WithoutReferences(text));
    // One character at a time, which is many times as fast as a search for any of them.
    for (const char c : {'/', '\\', '~'})
        if (text.find(c) != kNone) return Find(text);
    return {};
}

}  // namespace Tellurion
