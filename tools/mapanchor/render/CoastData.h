#pragma once

#include <cstddef>

namespace Tool {

/// Read-only pages of the program, which are loaded when they are read.
extern const unsigned char kCoastData[];
extern const std::size_t kCoastSize;

}  // namespace Tool
