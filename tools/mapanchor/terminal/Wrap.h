#pragma once

#include <string>

namespace Tool {

/// What help and tables are laid out for, in columns.
constexpr std::size_t kLineWidth = 80;

/// The text in lines of at most kLineWidth columns that start at column `indent`, the first of which
/// is already there. Words longer than a line stay whole. No line end at the end.
std::string Wrapped(const std::string& text, std::size_t indent);

/// `left` and, from column `indent` on, the wrapped text; on a line of its own where `left` is too long.
std::string Entry(const std::string& left, const std::string& text, std::size_t indent);

}  // namespace Tool
