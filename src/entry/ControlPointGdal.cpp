#include "ControlPointParsers.h"

#include "common/scanning/Text.h"

#include <Tellurion/Numbers.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

namespace MapAnchor {

using Tellurion::BControlPoint;
using Tellurion::BString;

namespace {

struct Word {
    std::string_view text;
    std::size_t line;
    std::size_t column;
};

/// Words between blanks; one that begins with a quote ends with it.
std::vector<Word> WordsOf(std::string_view text) {
    std::vector<Word> words;
    std::size_t line = 1;
    std::size_t start = 0;  // of the line
    for (std::size_t i = 0; i < text.size();) {
        if (text[i] == '\n') {
            ++line;
            start = ++i;
        } else if (IsBlank(text[i]) || text[i] == '\\') {
            ++i;
        } else if ((text[i] == '"' || text[i] == '\'') &&
                   text.find(text[i], i + 1) != std::string_view::npos) {
            const std::size_t end = text.find(text[i], i + 1);
            words.push_back({text.substr(i + 1, end - i - 1), line, i - start + 1});
            i = end + 1;
        } else {
            std::size_t end = i;
            while (end < text.size() && !IsBlank(text[end]))
                ++end;
            words.push_back({text.substr(i, end - i), line, i - start + 1});
            i = end;
        }
    }
    return words;
}

std::optional<double> NumberIn(std::string_view text) {
    double value = 0.0;
    if (!Tellurion::ScanDouble(text, value) || !text.empty() || !std::isfinite(value)) return std::nullopt;
    return value;
}

std::string Unescaped(std::string_view text) {
    static constexpr std::pair<std::string_view, char> kEntities[] = {
        {"&quot;", '"'}, {"&apos;", '\''}, {"&lt;", '<'}, {"&gt;", '>'}, {"&amp;", '&'}};
    std::string plain;
    while (!text.empty()) {
        const auto* const found =
            std::find_if(std::begin(kEntities), std::end(kEntities),
                         [&](const auto& entity) { return text.starts_with(entity.first); });
        const bool is_entity = found != std::end(kEntities);
        plain += is_entity ? found->second : text.front();
        text.remove_prefix(is_entity ? found->first.size() : 1);
    }
    return plain;
}

/// The value of an attribute in a tag; empty without one.
std::string AttributeOf(std::string_view tag, std::string_view name) {
    for (std::size_t at = tag.find(name); at != std::string_view::npos; at = tag.find(name, at + 1)) {
        const std::size_t open = at + name.size();
        if (at == 0 || !IsBlank(tag[at - 1]) || open + 1 >= tag.size() || tag[open] != '=') continue;
        const char quote = tag[open + 1];
        const std::size_t close = tag.find(quote, open + 2);
        if ((quote != '"' && quote != '\'') || close == std::string_view::npos) return {};
        return Unescaped(tag.substr(open + 2, close - open - 2));
    }
    return {};
}

}  // namespace

void ParseGcpOptions(std::string_view text, BControlPointFile& file) {
    constexpr std::size_t kNeeded = 4;
    file.Format = BControlPointFile::EFormat::Gcps;
    const std::vector<Word> words = WordsOf(text);
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (words[i].text == "-a_srs" && i + 1 < words.size())
            file.CoordSys = BString(std::string(words[++i].text));
        if (words[i].text != "-gcp") continue;
        const Word& option = words[i];
        std::vector<double> numbers;
        while (numbers.size() <= kNeeded && i + 1 < words.size()) {
            const auto number = NumberIn(words[i + 1].text);
            if (!number) break;
            numbers.push_back(*number);
            ++i;
        }
        if (numbers.size() < kNeeded)
            throw PointFault{option.line, option.column, "-gcp wants pixel, line, x and y, four numbers"};
        BControlPoint point;
        point.Column = numbers[0];
        point.Row = numbers[1];
        point.World = {numbers[2], numbers[3], numbers.size() > kNeeded ? numbers[4] : 0.0};
        file.Points.push_back(point);
    }
}

void ParseGcpList(std::string_view text, BControlPointFile& file) {
    file.Format = BControlPointFile::EFormat::Vrt;
    const std::size_t list = text.find("<GCPList");
    if (list == std::string_view::npos) throw PointFault{0, 0, "the file has no GCPList"};
    const std::size_t end = std::min(text.find("</GCPList", list), text.size());
    file.CoordSys = BString(AttributeOf(text.substr(list, text.find('>', list) - list), "Projection"));
    std::size_t line = 1 + static_cast<std::size_t>(std::count(
                               text.begin(), text.begin() + static_cast<std::ptrdiff_t>(list), '\n'));
    std::size_t counted = list;
    for (std::size_t at = text.find("<GCP ", list); at < end; at = text.find("<GCP ", at + 1)) {
        line += static_cast<std::size_t>(std::count(text.begin() + static_cast<std::ptrdiff_t>(counted),
                                                    text.begin() + static_cast<std::ptrdiff_t>(at), '\n'));
        counted = at;
        const std::string_view tag = text.substr(at, text.find('>', at) - at);
        BControlPoint point;
        point.Name = BString(AttributeOf(tag, "Id"));
        for (auto [name, value] : {std::pair{"Pixel", &point.Column},
                                   {"Line", &point.Row},
                                   {"X", &point.World.x},
                                   {"Y", &point.World.y}}) {
            const auto number = NumberIn(AttributeOf(tag, name));
            if (!number)
                throw PointFault{line, at - (text.rfind('\n', at) + 1) + 1,
                                 "the GCP has no number " + std::string(name)};
            *value = *number;
        }
        point.World.z = NumberIn(AttributeOf(tag, "Z")).value_or(0.0);
        file.Points.push_back(point);
    }
}

}  // namespace MapAnchor
