#pragma once

namespace Tool {

/// True when an allocation of this process has failed, whoever asked for it and however it went on.
/// PROJ and libtiff answer with less where they get no memory, and an answer of theirs that is poorer
/// for it must not pass for one of the file.
///
/// The tool puts its own malloc, calloc and realloc before those of glibc, which they call. Elsewhere and
/// under a sanitizer, which has its own, nothing is watched and the answer is always false.
bool AllocationHasFailed();

/// Starts to watch again, as a process does that inherits the mark of the one it was forked from.
void ForgetFailedAllocations();

}  // namespace Tool
