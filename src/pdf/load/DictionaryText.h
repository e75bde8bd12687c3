#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace VellumLib {

/// A dictionary as the text that it is in a file. What is not changed stays byte for byte.
class DictionaryText {
public:
    /// A PdfError for a text that is not one dictionary.
    explicit DictionaryText(std::string text);

    const std::string& Text() const { return text_; }
    /// The value of the key; empty where there is none.
    std::string Value(std::string_view key) const;
    void Remove(std::string_view key);
    /// The key comes last, with that value.
    void Set(std::string_view key, std::string_view value);

private:
    struct Entry {
        std::string key;
        std::size_t begin;
        std::size_t value;
        std::size_t end;
    };

    void Parse();
    void SkipWhite(std::size_t& at) const;
    std::string TakeName(std::size_t& at) const;
    void SkipToken(std::size_t& at) const;

    std::string text_;
    std::vector<Entry> entries_;
    std::size_t close_ = 0;  ///< of the brackets at the end
};

/// The text of an array with one more element at its end. A PdfError for a text that is not one.
std::string ArrayTextWith(const std::string& array, std::string_view added);

}  // namespace VellumLib
