#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Tellurion::Unicode {

struct Decoded {
    char32_t code = 0;
    std::size_t length = 0;  ///< in bytes; 0 when no valid sequence begins here
};

/// The first UTF-8 sequence of `bytes`, which are not empty. Overlong forms, surrogates and values
/// past U+10FFFF are not valid.
Decoded DecodeOne(std::string_view bytes);

/// UTF-8 to UTF-16. A byte that belongs to no valid sequence becomes the lone
/// surrogate U+DC00 + byte, which ToUtf8 turns back into that byte.
std::u16string FromUtf8(std::string_view bytes);

/// The inverse of FromUtf8; lone surrogates of other values become U+FFFD.
std::string ToUtf8(std::u16string_view units);

/// True when every byte belongs to a valid UTF-8 sequence.
bool IsUtf8(std::string_view bytes);

/// Every byte by the Windows-1252 table; the five bytes without a character there
/// become the control characters of the same number.
std::u16string FromWindows1252(std::string_view bytes);

/// The inverse. A lone surrogate that stands for a byte becomes that byte; every other
/// character without a byte becomes "?" and sets `lossy`.
std::string ToWindows1252(std::u16string_view units, bool& lossy);

/// The platform's wide text: UTF-16 or UTF-32 by the width of wchar_t.
std::u16string FromWide(std::wstring_view text);
std::wstring ToWide(std::u16string_view units);

/// Simple case mapping of one code unit, the same in every locale.
char16_t ToLower(char16_t unit);
char16_t ToUpper(char16_t unit);
bool IsSpace(char16_t unit);

}  // namespace Tellurion::Unicode
