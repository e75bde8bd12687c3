#pragma once

#include <Tellurion/Export.h>

struct stat;

namespace Tellurion {

/// Opens a regular file for reading, or a link to one; -1 with errno set for anything else.
/// A pipe, a device, a socket or a folder is not opened at all, since opening one can wait
/// for its other end or change its state. `status`, when given, receives the file's state.
TELLURION_EXPORT int OpenRegularFile(const char* path, struct stat* status = nullptr);

}  // namespace Tellurion
