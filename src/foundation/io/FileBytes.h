#pragma once

#include <Tellurion/Export.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

/// Contents through file descriptors. A result of type int is an error number of the system,
/// 0 on success.
namespace Tellurion::FileBytes {

/// Fills `out` with the bytes from `position` on; how many there were. `error`, when given,
/// receives the error number of a failed read.
TELLURION_EXPORT std::size_t ReadAt(int file, std::span<char> out, std::uint64_t position,
                                    int* error = nullptr);

int WriteAll(int file, std::string_view bytes);

/// Copies all of `from` to the same positions of `to`, which is not shortened.
int Copy(int from, int to);

/// Gives `to` the content of `from` and syncs it. Room is reserved first, so that a full
/// disk changes nothing. With `old` (a file of no content, or negative for none) the
/// old content is kept there, and put back after any other failure.
int Overwrite(int to, int from, int old);

/// A copy under a name that is free, for its owner alone from the first byte, and synced.
TELLURION_EXPORT int CopyToNew(const std::string& from, const std::string& to);

/// Renames a file to a name that is free, and syncs the file before and both folders after.
/// The result is that of the renaming.
TELLURION_EXPORT int Move(const std::string& from, const std::string& to);

/// Waits until a file, or at least its content and length, are on the disk; at once while
/// a WithoutSync lives.
TELLURION_EXPORT int Sync(int file);
TELLURION_EXPORT int SyncData(int file);

/// Syncs a folder that can be opened.
int SyncFolder(const std::string& folder);

/// The folder of a path, "." for a bare name.
std::string FolderOf(const std::string& path);

}  // namespace Tellurion::FileBytes
