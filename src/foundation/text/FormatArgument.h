#pragma once

#include <Tellurion/Export.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

namespace Tellurion {

class BString;

/// One argument of BString::Format: a number, a text or a pointer to text, with
/// its own type. The conversion in the format text chooses the appearance; it is
/// never trusted for the type, so a wrong one prints oddly but reads no memory.
/// Refers to the caller's text and must not outlive it.
class TELLURION_EXPORT FormatArgument {
public:
    /** How it is held. */ enum class Kind { Signed, Unsigned, Real, Narrow, Wide, Utf16 };

    template <class T, std::enable_if_t<std::is_integral_v<T> && std::is_signed_v<T>, int> = 0>
    FormatArgument(T value) : kind_(Kind::Signed), signed_(value) {}
    template <class T, std::enable_if_t<std::is_integral_v<T> && std::is_unsigned_v<T>, int> = 0>
    FormatArgument(T value) : kind_(Kind::Unsigned), unsigned_(value) {}
    template <class T, std::enable_if_t<std::is_enum_v<T>, int> = 0>
    FormatArgument(T value) : kind_(Kind::Signed), signed_(static_cast<std::int64_t>(value)) {}
    FormatArgument(double value) : kind_(Kind::Real), real_(value) {}
    FormatArgument(float value) : kind_(Kind::Real), real_(static_cast<double>(value)) {}
    FormatArgument(const char* text);  ///< null prints as "(null)"
    FormatArgument(const wchar_t* text);
    FormatArgument(const std::string& text) : kind_(Kind::Narrow), narrow_(text) {}
    FormatArgument(std::string_view text) : kind_(Kind::Narrow), narrow_(text) {}
    FormatArgument(const BString& text);

    Kind GetKind() const { return kind_; }                ///< which of these holds
    std::int64_t Signed() const { return signed_; }       ///< of Kind::Signed
    std::uint64_t Unsigned() const { return unsigned_; }  ///< of Kind::Unsigned
    double Real() const { return real_; }                 ///< of Kind::Real
    std::string_view Narrow() const { return narrow_; }   ///< of Kind::Narrow
    std::wstring_view Wide() const { return wide_; }      ///< of Kind::Wide
    std::u16string_view Utf16() const { return utf16_; }  ///< of Kind::Utf16

private:
    Kind kind_;
    std::int64_t signed_ = 0;
    std::uint64_t unsigned_ = 0;
    double real_ = 0.0;
    std::string_view narrow_;
    std::wstring_view wide_;
    std::u16string_view utf16_;
};

}  // namespace Tellurion
