#include "coordsys/MapInfoClause.h"

#include "coordsys/Names.h"

#include <Tellurion/BFile.h>
#include <Tellurion/Numbers.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <vector>

namespace Tellurion {
namespace {

constexpr std::size_t kLongestClause = std::size_t{8} << 10;
constexpr int kMostLines = 32;

bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\v' || c == '\f';
}

bool IsWordCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

struct Token {
    enum class Kind { Word, Number, Text, Comma, Other, End };
    Kind kind = Kind::End;
    std::string_view text;  ///< of a quoted text, what stands between the quotes
    double number = 0.0;

    bool IsWord(std::string_view lower) const { return kind == Kind::Word && LowerAscii(text) == lower; }
};

/// The words, numbers and quoted texts of a clause, one after the other.
class Tokens {
public:
    explicit Tokens(std::string_view text) : rest_(text) { Advance(); }

    const Token& Now() const { return now_; }
    void Advance() {
        while (!rest_.empty() && IsBlank(rest_.front()))
            rest_.remove_prefix(1);
        now_ = Next();
    }
    /// Passes over that token; false, in the same place, before another.
    bool Accept(Token::Kind kind) {
        if (now_.kind != kind) return false;
        Advance();
        return true;
    }
    bool AcceptWord(std::string_view lower) {
        if (!now_.IsWord(lower)) return false;
        Advance();
        return true;
    }

private:
    Token Next() {
        if (rest_.empty()) return {};
        const char first = rest_.front();
        if (first == '"') return Quoted();
        if (first == ',') return {Token::Kind::Comma, Take(1)};
        if (first != '+' && first != '-' && first != '.' && IsWordCharacter(first) && !IsDigit(first))
            return {Token::Kind::Word, Take(WordLength())};
        Token token{Token::Kind::Number, rest_};
        if (ScanDouble(rest_, token.number)) return token;
        return {Token::Kind::Other, Take(1)};
    }
    Token Quoted() {
        Take(1);
        const std::size_t end = rest_.find('"');
        if (end == std::string_view::npos) return {Token::Kind::Other, Take(rest_.size())};
        const Token token{Token::Kind::Text, Take(end)};
        Take(1);
        return token;
    }
    std::string_view Take(std::size_t count) {
        const std::string_view taken = rest_.substr(0, count);
        rest_.remove_prefix(count);
        return taken;
    }
    std::size_t WordLength() const {
        return static_cast<std::size_t>(
            std::distance(rest_.begin(), std::ranges::find_if_not(rest_, IsWordCharacter)));
    }
    static bool IsDigit(char c) { return c >= '0' && c <= '9'; }

    std::string_view rest_;
    Token now_;
};

/// How many parameters each type of projection needs behind its unit, from type 0 on;
/// the range of the azimuthal ones (4, 5, 28, 29) may be left out.
constexpr int kNeeded[] = {-1, 0, 2, 6, 2, 2, 6, 6, 5, 6, 1, 1, 1, 1, 1, 1, 1,
                           1,  4, 6, 5, 5, 5, 5, 5, 4, 2, 4, 2, 2, 4, 5, 6, 2};
constexpr int kTypes = static_cast<int>(std::size(kNeeded));

/// The datums that OGR knows: it takes any other number for WGS 84.
constexpr std::pair<int, int> kDatums[] = {{0, 159},     {161, 161},   {999, 999},  {1000, 1025},
                                           {1028, 1028}, {1031, 1031}, {9999, 9999}};

struct UnitName {
    int code;
    std::string_view name;
};
constexpr UnitName kUnits[] = {{0, "mi"},  {1, "km"},  {2, "in"}, {3, "ft"},        {4, "yd"},
                               {5, "mm"},  {6, "cm"},  {7, "m"},  {8, "survey ft"}, {9, "nmi"},
                               {30, "li"}, {31, "ch"}, {32, "rd"}};

bool IsKnownDatum(int number) {
    return std::ranges::any_of(
        kDatums, [number](const auto& range) { return number >= range.first && number <= range.second; });
}

/// The name of a unit that is told by name or number; empty for an unknown one.
std::string_view FindUnit(const Token& token) {
    const std::string name = LowerAscii(token.text);
    for (const UnitName& unit : kUnits)
        if (token.kind == Token::Kind::Text ? unit.name == name : unit.code == token.number) return unit.name;
    return {};
}

/// The numbers and texts of a list that commas part; false when an item is missing
/// between two of them.
bool ReadItems(Tokens& tokens, std::vector<Token>& items) {
    do {
        if (tokens.Now().kind != Token::Kind::Number && tokens.Now().kind != Token::Kind::Text) return false;
        items.push_back(tokens.Now());
        tokens.Advance();
    } while (tokens.Accept(Token::Kind::Comma));
    return true;
}

/// Takes items off the front and puts them into the text that OGR reads.
class ClauseWriter {
public:
    explicit ClauseWriter(std::vector<Token> items) : items_(std::move(items)) {}

    std::size_t Left() const { return items_.size() - next_; }
    const Token& Peek() const { return items_[next_]; }
    bool TakeWhole(int& number) {
        if (Left() == 0 || !IsNumber(Peek()) || std::abs(Peek().number) > 1e6 ||
            std::trunc(Peek().number) != Peek().number)
            return false;
        number = static_cast<int>(items_[next_++].number);
        return true;
    }
    /// False when fewer finite numbers are left.
    bool CopyNumbers(int count) {
        for (; count > 0; --count) {
            if (Left() == 0 || !IsNumber(Peek())) return false;
            Append(PrintShortest(items_[next_++].number));
        }
        return true;
    }
    void Skip() { ++next_; }
    void Append(std::string_view item) {
        if (!text_.ends_with(' ')) text_ += ", ";
        text_ += item;
    }
    const std::string& Text() const { return text_; }

private:
    static bool IsNumber(const Token& token) {
        return token.kind == Token::Kind::Number && std::isfinite(token.number);
    }

    std::vector<Token> items_;
    std::size_t next_ = 0;
    std::string text_ = "Earth Projection ";
};

/// Behind the word Projection: empty on success, else what is wrong.
std::string ReadProjection(ClauseWriter& writer) {
    int type = 0;
    int datum = 0;
    if (!writer.TakeWhole(type) || !writer.TakeWhole(datum)) return "projection or datum is no number";
    // Thousands tell of an affine part (1000) and of bounds (2000) behind the parameters.
    if (type / 1000 == 1 || type / 1000 == 3) return "affine transforms are not supported";
    const int method = type - type / 1000 * 1000;
    if (type < 0 || type >= 4000 || method < 1 || method >= kTypes) return "the projection is not known";
    if (!IsKnownDatum(datum)) return "the datum is not known";
    writer.Append(std::to_string(method));
    writer.Append(std::to_string(datum));
    const int datum_parameters = datum == 999 ? 4 : datum == 9999 ? 9 : 0;
    if (!writer.CopyNumbers(datum_parameters)) return "the datum lacks parameters";
    if (method == 1) return {};
    const std::string_view unit = writer.Left() != 0 ? FindUnit(writer.Peek()) : std::string_view();
    if (unit.empty()) return "the unit is not known";
    writer.Skip();
    writer.Append('"' + std::string(unit) + '"');
    if (!writer.CopyNumbers(kNeeded[method])) return "the projection lacks parameters";
    if (writer.Left() != 0) writer.CopyNumbers(1);  // the range of an azimuthal projection
    return {};
}

std::string ReadEarth(Tokens& tokens, std::string& text) {
    if (!tokens.AcceptWord("projection")) {
        text = "Earth Projection 1, 0";
    } else {
        std::vector<Token> items;
        if (!ReadItems(tokens, items)) return "a parameter is missing";
        ClauseWriter writer(std::move(items));
        std::string fault = ReadProjection(writer);
        if (!fault.empty()) return fault;
        text = writer.Text();
    }
    if (tokens.AcceptWord("units")) tokens.Accept(Token::Kind::Text);
    return tokens.Now().IsWord("affine") ? "affine transforms are not supported" : "";
}

std::string ReadNonEarth(Tokens& tokens, std::string& text) {
    if (tokens.Now().IsWord("affine")) return "affine transforms are not supported";
    std::string_view unit = "m";
    if (tokens.AcceptWord("units")) unit = FindUnit(tokens.Now());
    if (unit.empty()) return "the unit is not known";
    text = "NonEarth Units \"" + std::string(unit) + '"';
    return {};
}

/// Where the text behind the word CoordSys begins; npos without the word. Quoted
/// texts do not count.
std::size_t FindKeyword(std::string_view line) {
    constexpr std::string_view kKeyword = "coordsys";
    // Few lines have its rarest letter, and only those are looked at closely.
    if (line.find('y') == std::string_view::npos && line.find('Y') == std::string_view::npos)
        return std::string_view::npos;
    bool quoted = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '"') quoted = !quoted;
        if (quoted || (line[i] != 'c' && line[i] != 'C')) continue;
        if ((i > 0 && IsWordCharacter(line[i - 1])) ||
            LowerAscii(line.substr(i, kKeyword.size())) != kKeyword)
            continue;
        const std::size_t end = i + kKeyword.size();
        if (end == line.size() || !IsWordCharacter(line[end])) return end;
    }
    return std::string_view::npos;
}

}  // namespace

MapInfoClause ParseMapInfoClause(std::string_view text) {
    Tokens tokens(text);
    MapInfoClause clause;
    clause.found = true;
    if (tokens.AcceptWord("earth"))
        clause.fault = ReadEarth(tokens, clause.text);
    else if (tokens.AcceptWord("nonearth"))
        clause.fault = ReadNonEarth(tokens, clause.text);
    else
        clause.fault = "neither Earth nor NonEarth";
    return clause;
}

MapInfoClause ReadMapInfoClause(BFile& file) {
    std::string_view line;
    while (file.ReadLineBytes(line)) {
        const std::size_t start = FindKeyword(line);
        if (start == std::string_view::npos) continue;
        std::string text(line.substr(start));
        for (int i = 1; i < kMostLines && text.size() < kLongestClause && file.ReadLineBytes(line); ++i)
            text.append("\n").append(line);
        return ParseMapInfoClause(std::string_view(text).substr(0, kLongestClause));
    }
    return {};
}

}  // namespace Tellurion
