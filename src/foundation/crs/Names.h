#pragma once

#include "text/Ascii.h"

#include <string>
#include <string_view>

/// Comparison of names that are spelled in many ways.
namespace Tellurion {

/// The ASCII letters and digits of a text, nothing else.
std::string LettersAndDigits(std::string_view text);

/// True when `list`, names parted by '|', has `name` as a member.
bool ListHas(std::string_view list, std::string_view name);

/// The first name of such a list.
std::string FirstOf(std::string_view list);

}  // namespace Tellurion
