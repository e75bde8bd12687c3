#include "names/MapInfoClause.h"

#include "crs/Names.h"
#include "names/MapInfoDatums.h"

#include <Tellurion/BFile.h>
#include <Tellurion/Numbers.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <iterator>
#include <vector>

namespace Tellurion {
namespace {

constexpr std::size_t kLongestClause = std::size_t{8} << 10;
constexpr int kMostLines = 32;

bool IsWordCharacter(char c) {
    return IsLetterOrDigit(c) || c == '_';
}

struct Token {
    enum class Kind { Word, Number, Text, Comma, Other, End };
    Kind kind = Kind::End;
    std::string_view text;  ///< of a quoted text, the part between the quotes
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

    std::string_view rest_;
    Token now_;
};

/// How many parameters each type of projection needs behind its unit, from type 0 on;
/// the range of the azimuthal ones (4, 5, 28, 29) may be left out.
constexpr int kNeeded[] = {-1, 0, 2, 6, 2, 2, 6, 6, 5, 6, 1, 1, 1, 1, 1, 1, 1, 1,
                           4,  6, 5, 5, 5, 5, 5, 4, 2, 4, 2, 2, 4, 5, 6, 2, 5};
constexpr int kTypes = static_cast<int>(std::size(kNeeded));

constexpr MapInfoUnit kUnits[] = {
    {0, "mi", "mile", 1609.344},
    {1, "km", "kilometre", 1000.0},
    {2, "in", "inch", 0.0254},
    {3, "ft", "foot", 0.3048},
    {4, "yd", "yard", 0.9144},
    {5, "mm", "millimetre", 0.001},
    {6, "cm", "centimetre", 0.01},
    {7, "m", "metre", 1.0},
    {8, "survey ft", "US survey foot", 1200.0 / 3937.0},
    {9, "nmi", "nautical mile", 1852.0},
    {30, "li", "US survey link", 792.0 / 3937.0},
    {31, "ch", "US survey chain", 79200.0 / 3937.0},
    {32, "rd", "US survey rod", 19800.0 / 3937.0},
};

/// The name of a unit that is given by name or number; empty for an unknown unit.
std::string_view FindUnit(const Token& token) {
    const std::string name = LowerAscii(token.text);
    for (const MapInfoUnit& unit : kUnits)
        if (token.kind == Token::Kind::Text ? name == unit.name : unit.code == token.number) return unit.name;
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

/// Consumes items from the front.
class Items {
public:
    explicit Items(std::vector<Token> items) : items_(std::move(items)) {}

    std::size_t Left() const { return items_.size() - next_; }
    const Token& Peek() const { return items_[next_]; }
    void Skip() { ++next_; }
    bool ReadWhole(int& number) {
        if (Left() == 0 || !IsNumber(Peek()) || std::abs(Peek().number) > 1e6 ||
            std::trunc(Peek().number) != Peek().number)
            return false;
        number = static_cast<int>(items_[next_++].number);
        return true;
    }
    /// False when fewer finite numbers are left.
    bool ReadNumbers(int count, std::vector<double>& numbers) {
        for (; count > 0; --count) {
            if (Left() == 0 || !IsNumber(Peek())) return false;
            numbers.push_back(items_[next_++].number);
        }
        return true;
    }

private:
    static bool IsNumber(const Token& token) {
        return token.kind == Token::Kind::Number && std::isfinite(token.number);
    }

    std::vector<Token> items_;
    std::size_t next_ = 0;
};

/// The datum with its parameters: empty on success, else what is wrong.
std::string ReadDatum(Items& items, MapInfoTerms& terms) {
    MapInfoDatum asked;
    asked.number = terms.datum;
    if (!items.ReadNumbers(asked.CountParameters(), terms.datum_parameters))
        return "the datum lacks parameters";
    if (ReadMapInfoDatum(terms.datum, terms.datum_parameters).ellipsoid >= 0) return {};
    return asked.IsSpelledOut() ? "the ellipsoid is not known" : "the datum is not known";
}

/// Behind the word Projection: empty on success, else what is wrong.
std::string ReadProjection(Items& items, MapInfoTerms& terms) {
    int type = 0;
    if (!items.ReadWhole(type) || !items.ReadWhole(terms.datum)) return "projection or datum is no number";
    // Thousands tell of an affine part (1000) and of bounds (2000) behind the parameters.
    if (type / 1000 == 1 || type / 1000 == 3) return "affine transforms are not supported";
    terms.type = type - type / 1000 * 1000;
    if (type < 0 || type >= 4000 || terms.type < 1 || terms.type >= kTypes)
        return "the projection is not known";
    if (std::string fault = ReadDatum(items, terms); !fault.empty()) return fault;
    if (terms.type == 1) return {};
    terms.unit = items.Left() != 0 ? FindUnit(items.Peek()) : std::string_view();
    if (terms.unit.empty()) return "the unit is not known";
    items.Skip();
    if (!items.ReadNumbers(kNeeded[terms.type], terms.parameters)) return "the projection lacks parameters";
    if (items.Left() != 0) items.ReadNumbers(1, terms.parameters);  // the range of an azimuthal projection
    return {};
}

constexpr const char* kNoAffine = "this affine transform is not supported";

/// Behind the word Affine: empty on success, else what is wrong. Rotated and skewed
/// grids, and such in another unit, have no system.
std::string ReadAffine(Tokens& tokens, MapInfoTerms& terms) {
    std::vector<Token> list;
    if (!tokens.AcceptWord("units") || !ReadItems(tokens, list)) return kNoAffine;
    Items items(std::move(list));
    std::vector<double> terms_of_six;
    if (items.Left() == 0 || FindUnit(items.Peek()) != terms.unit || terms.type <= 1) return kNoAffine;
    items.Skip();
    if (!items.ReadNumbers(6, terms_of_six) || terms_of_six[1] != 0.0 || terms_of_six[3] != 0.0)
        return kNoAffine;
    terms.affine = {terms_of_six[0], terms_of_six[4], terms_of_six[2], terms_of_six[5]};
    return terms.affine.scale_x == 0.0 || terms.affine.scale_y != terms.affine.scale_x ? kNoAffine : "";
}

std::string ReadEarth(Tokens& tokens, MapInfoTerms& terms) {
    if (!tokens.AcceptWord("projection")) {
        terms.type = 1;
    } else {
        std::vector<Token> list;
        if (!ReadItems(tokens, list)) return "a parameter is missing";
        Items items(std::move(list));
        if (std::string fault = ReadProjection(items, terms); !fault.empty()) return fault;
    }
    if (tokens.AcceptWord("units")) tokens.Accept(Token::Kind::Text);
    return tokens.AcceptWord("affine") ? ReadAffine(tokens, terms) : "";
}

std::string ReadNonEarth(Tokens& tokens, MapInfoTerms& terms) {
    if (tokens.Now().IsWord("affine")) return "affine transforms are not supported";
    terms.unit = "m";
    if (tokens.AcceptWord("units")) terms.unit = FindUnit(tokens.Now());
    return terms.unit.empty() ? "the unit is not known" : "";
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

/// Without an exponent, which not all readers of clauses accept.
std::string FormatNumber(double value) {
    // The widest double has 1,077 characters.
    std::array<char, 1100> buffer;
    const auto [end, error] =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed);
    return error == std::errc() ? std::string(buffer.data(), end) : std::string("0");
}

void AppendNumbers(std::string& text, const std::vector<double>& numbers) {
    for (const double number : numbers)
        text += ", " + FormatNumber(number);
}

}  // namespace

const MapInfoUnit* FindMapInfoUnit(std::string_view name) {
    const auto* found = std::ranges::find(kUnits, name, &MapInfoUnit::name);
    return found == std::end(kUnits) ? nullptr : found;
}

const MapInfoUnit* FindMapInfoUnit(double metres) {
    constexpr double kSameLength = 1e-12;  // of the unit's own
    const auto* found = std::ranges::find_if(kUnits, [metres](const MapInfoUnit& unit) {
        return std::abs(unit.metres - metres) <= kSameLength * metres;
    });
    return found == std::end(kUnits) ? nullptr : found;
}

std::string FormatMapInfo(const MapInfoTerms& terms) {
    if (terms.type == 0) return "NonEarth Units \"" + std::string(terms.unit) + '"';
    std::string text = "Earth Projection " + std::to_string(terms.type) + ", " + std::to_string(terms.datum);
    AppendNumbers(text, terms.datum_parameters);
    if (!terms.unit.empty()) text += ", \"" + std::string(terms.unit) + '"';
    AppendNumbers(text, terms.parameters);
    if (const MapInfoAffine& affine = terms.affine; affine != MapInfoAffine()) {
        text += " Affine Units \"" + std::string(terms.unit) + '"';
        AppendNumbers(text, {affine.scale_x, 0.0, affine.shift_x, 0.0, affine.scale_y, affine.shift_y});
    }
    return text;
}

MapInfoClause ParseMapInfoClause(std::string_view text) {
    Tokens tokens(text);
    MapInfoClause clause;
    clause.found = true;
    if (tokens.AcceptWord("earth"))
        clause.fault = ReadEarth(tokens, clause.terms);
    else if (tokens.AcceptWord("nonearth"))
        clause.fault = ReadNonEarth(tokens, clause.terms);
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
