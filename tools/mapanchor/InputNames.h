#pragma once

#include <functional>
#include <string>
#include <vector>

/// Calls `visit` with each name in turn; "-" stands for the names on stdin, one a
/// line or, with `nul_separated`, behind a NUL each. Names are bytes, never decoded.
/// Throws std::runtime_error when stdin cannot be read.
void ForEachInput(const std::vector<std::string>& names, bool nul_separated,
                  const std::function<void(const std::string& name)>& visit);

/// The failure of reading names on stdin, by the number of the error.
std::string UnreadableNames(int error);
