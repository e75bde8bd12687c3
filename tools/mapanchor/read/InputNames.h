#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace Tool {

/// Calls `visit` with each name in turn; "-" stands for the names on stdin, one a
/// line or, with `nul_separated`, behind a NUL each. Names are bytes, never decoded.
/// Throws std::runtime_error when stdin cannot be read.
void ForEachInput(const std::vector<std::string>& names, bool nul_separated,
                  const std::function<void(const std::string& name)>& visit);

/// The failure of reading names on stdin, by the number of the error.
std::string UnreadableNames(int error);

/// In bytes. What is longer is no list of names, and is not collected in memory.
constexpr std::size_t kMaxNameLength = std::size_t{64} << 10;
/// The failure of reading a longer one.
std::string TooLongName();

}  // namespace Tool
