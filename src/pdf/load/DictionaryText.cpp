#include "load/DictionaryText.h"

#include "load/LoadBudget.h"
#include "load/SyntaxTracker.h"

#include <algorithm>

namespace VellumLib {

namespace {

constexpr std::string_view kWhite("\0\t\n\f\r ", 6);
constexpr std::string_view kDelimiters = "()<>[]{}/%";

bool IsWhite(char byte) {
    return kWhite.find(byte) != std::string_view::npos;
}

bool IsRegular(char byte) {
    return !IsWhite(byte) && kDelimiters.find(byte) == std::string_view::npos;
}

int HexDigit(char byte) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    if (byte >= 'A' && byte <= 'F') byte = static_cast<char>(byte - 'A' + 'a');
    const std::size_t found = kDigits.find(byte);
    return found == std::string_view::npos ? -1 : static_cast<int>(found);
}

void Require(bool held) {
    if (!held) RefusePdf(PoDoFo::ePdfError_InvalidDataType, "A dictionary is not written as one.");
}

}  // namespace

DictionaryText::DictionaryText(std::string text) : text_(std::move(text)) {
    Parse();
}

void DictionaryText::SkipWhite(std::size_t& at) const {
    while (at < text_.size() && (IsWhite(text_[at]) || text_[at] == '%')) {
        if (text_[at] == '%')
            at = std::min(text_.find_first_of("\r\n", at), text_.size());
        else
            ++at;
    }
}

/// Two digits behind a number sign are one byte.
std::string DictionaryText::TakeName(std::size_t& at) const {
    Require(at < text_.size() && text_[at] == '/');
    std::string name;
    for (++at; at < text_.size() && IsRegular(text_[at]); ++at) {
        const bool coded = text_[at] == '#' && at + 2 < text_.size() && HexDigit(text_[at + 1]) >= 0 &&
                           HexDigit(text_[at + 2]) >= 0;
        name += coded ? static_cast<char>(HexDigit(text_[at + 1]) * 16 + HexDigit(text_[at + 2])) : text_[at];
        if (coded) at += 2;
    }
    return name;
}

/// A whole array, dictionary or string, or one word.
void DictionaryText::SkipToken(std::size_t& at) const {
    Require(at < text_.size());
    const char first = text_[at];
    if (first == '(' || first == '<' || first == '[') {
        SyntaxTracker tracker;
        while (at < text_.size() && !tracker.ValueEnded()) {
            tracker.Consume(static_cast<unsigned char>(text_[at++]));
            Require(tracker.Depth() <= LoadBudget::kDeepest);
        }
        return Require(tracker.ValueEnded());
    }
    if (first == '/') ++at;
    Require(at < text_.size() && (first == '/' || IsRegular(first)));
    while (at < text_.size() && IsRegular(text_[at]))
        ++at;
}

void DictionaryText::Parse() {
    entries_.clear();
    std::size_t at = 0;
    SkipWhite(at);
    Require(text_.compare(at, 2, "<<") == 0);
    at += 2;
    for (SkipWhite(at); text_.compare(at, 2, ">>") != 0; SkipWhite(at)) {
        Require(at < text_.size());
        Entry entry{{}, at, 0, 0};
        entry.key = TakeName(at);
        SkipWhite(at);
        entry.value = at;
        SkipToken(at);
        entry.end = at;
        // A number may be the first of a reference.
        for (SkipWhite(at); at < text_.size() && IsRegular(text_[at]); SkipWhite(at)) {
            SkipToken(at);
            entry.end = at;
        }
        entries_.push_back(std::move(entry));
    }
    close_ = at;
}

std::string DictionaryText::Value(std::string_view key) const {
    const auto found = std::ranges::find(entries_, key, &Entry::key);
    return found == entries_.end() ? "" : text_.substr(found->value, found->end - found->value);
}

void DictionaryText::Remove(std::string_view key) {
    for (std::size_t i = entries_.size(); i-- > 0;)
        if (entries_[i].key == key) text_.erase(entries_[i].begin, entries_[i].end - entries_[i].begin);
    Parse();
}

void DictionaryText::Set(std::string_view key, std::string_view value) {
    Remove(key);
    std::string entry = "\n/";
    entry.append(key).append(" ").append(value).append("\n");
    text_.insert(close_, entry);
    Parse();
}

std::string ArrayTextWith(const std::string& array, std::string_view added) {
    const std::size_t begin = array.find_first_not_of(kWhite);
    const std::size_t end = array.find_last_not_of(kWhite);
    if (begin == std::string::npos || begin == end || array[begin] != '[' || array[end] != ']')
        RefusePdf(PoDoFo::ePdfError_InvalidDataType, "An array is not written as one.");
    return array.substr(begin, end - begin).append(" ").append(added).append(" ]");
}

}  // namespace VellumLib
