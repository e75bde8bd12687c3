#pragma once

#include <functional>
#include <string>
#include <vector>

/// Calls `visit` with each name in turn; "-" stands for the names on stdin, one a
/// line or, with `nul_separated`, behind a NUL each. Names are bytes, never decoded.
void ForEachInput(const std::vector<std::string>& names, bool nul_separated,
                  const std::function<void(const std::string& name)>& visit);
