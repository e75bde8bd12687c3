#pragma once

#include <string>
#include <string_view>

/// Comparison of names that are spelled in many ways.
namespace Tellurion {

std::string UpperAscii(std::string_view text);
std::string LowerAscii(std::string_view text);

/// The ASCII letters and digits of a text, nothing else.
std::string LettersAndDigits(std::string_view text);

/// True when `list`, names parted by '|', has `name` as a member.
bool ListHas(std::string_view list, std::string_view name);

/// The first name of such a list.
std::string FirstOf(std::string_view list);

}  // namespace Tellurion
