#pragma once

#include <sys/types.h>
#include <string_view>

/// Whole contents through file descriptors. Every result is an error number of the
/// system, 0 on success.
namespace Tellurion::FileBytes {

int WriteAll(int file, std::string_view bytes);

/// Copies all of `from` to the same positions of `to`, which is not shortened.
int Copy(int from, int to);

/// Gives `to` the content of `from` and syncs it. Room is reserved first, so that a full
/// disk changes nothing. With `old` (a file of no content, or negative for none) the
/// old content is kept there, and put back after any other failure.
int Overwrite(int to, int from, int old);

}  // namespace Tellurion::FileBytes
