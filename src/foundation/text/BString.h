#pragma once

#include <Tellurion/Export.h>
#include <Tellurion/FormatArgument.h>

#include <atomic>
#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>

namespace Tellurion {

/// A text of 16-bit code units (UTF-16).
///
/// Narrow text is UTF-8 in both directions. Bytes that are no UTF-8 survive: each
/// becomes the lone surrogate U+DC00 + byte and turns back into that byte in
/// Ascii(), Utf8() and StdStr(), so any file name and any label round-trips.
/// Wide C strings use the platform's wchar_t. Comparison is exact, unit by unit.
///
/// Const operations may run in several threads on one object.
class TELLURION_EXPORT BString {
public:
    BString() = default;
    BString(const wchar_t* text);          ///< null counts as empty
    BString(const char* text);             ///< null counts as empty
    BString(const std::string& text);      ///< may hold NUL characters
    BString(const std::u16string& units);  ///< the units as they are
    BString(const BString& other);
    BString(BString&& other) noexcept;  ///< leaves `other` empty
    virtual ~BString();

    BString& operator=(const BString& other);
    BString& operator=(BString&& other) noexcept;  ///< leaves `other` empty
    BString& operator=(const wchar_t* text);       ///< null counts as empty
    BString& operator=(const char* text);          ///< null counts as empty

    BString& operator+=(const BString& text);  ///< appends
    BString& operator+=(const wchar_t* text);  ///< appends; null counts as empty
    BString& operator+=(const char* text);     ///< appends; null counts as empty
    BString& operator+=(char character);       ///< appends one byte of ASCII

    /// printf rules: flags, width, precision and the conversions d i u x X o c f F
    /// e E g G s ls, with any length modifier. Numbers have a decimal point in every
    /// locale. An argument prints by its own type; a conversion without an argument
    /// stays in the text unchanged, surplus arguments are ignored.
    template <class... Args>
    static BString Format(const char* format, const Args&... arguments) {
        const FormatArgument list[sizeof...(Args) + 1] = {FormatArgument(arguments)..., FormatArgument(0)};
        return FormatList(format, list, sizeof...(Args));
    }
    /** The same. */ template <class... Args>
    static BString Format(const wchar_t* format, const Args&... arguments) {
        const FormatArgument list[sizeof...(Args) + 1] = {FormatArgument(arguments)..., FormatArgument(0)};
        return FormatList(BString(format).Utf8(), list, sizeof...(Args));
    }

    bool IsEmpty() const { return units_.empty(); }  ///< no unit at all
    /// Length in code units.
    std::size_t GetLength() const { return units_.size(); }
    /// The text itself; valid while the string is unchanged.
    const std::u16string& GetUnits() const { return units_; }

    BString Left(std::size_t count) const;   ///< the first count units, or all
    BString Right(std::size_t count) const;  ///< the last count units, or all
    BString& Trim();                         ///< in place; white space at both ends
    BString& ToLower();                      ///< in place; simple case mapping, the same in every locale
    BString& ToUpper();                      ///< the same to upper case
    BString& ReplaceAll(const BString& from, const BString& to);  ///< in place; an empty from changes nothing
    BString& RemoveAll(const BString& what);                      ///< in place
    bool StartsWith(const BString& prefix) const;                 ///< true for an empty one
    bool EndsWith(const BString& suffix) const;                   ///< true for an empty one

    /// The UTF-8 form as a C string, valid while the string is unchanged.
    const char* Ascii() const { return Narrow().c_str(); }
    const char* Utf8() const { return Narrow().c_str(); }  ///< the same
    /// The UTF-8 form; keeps NUL characters.
    std::string StdStr() const;
    /// The platform's wide form.
    std::wstring WideStr() const;

    friend bool operator==(const BString& a, const BString& b) { return a.units_ == b.units_; }  ///< exact
    friend bool operator!=(const BString& a, const BString& b) { return a.units_ != b.units_; }  ///< exact
    /** By units. */ friend bool operator<(const BString& a, const BString& b) { return a.units_ < b.units_; }
    friend BString operator+(BString a, const BString& b) { return std::move(a += b); }  ///< joins

private:
    friend class BLogger;  // formats arguments of its own
    static BString FormatList(const char* format, const FormatArgument* arguments, std::size_t count);
    const std::string& Narrow() const;
    void Changed();

    std::u16string units_;
    /// The narrow form, made on first request; owned.
    mutable std::atomic<const std::string*> narrow_{nullptr};
};

/// Writes the UTF-8 form.
TELLURION_EXPORT std::ostream& operator<<(std::ostream& out, const BString& text);

}  // namespace Tellurion
