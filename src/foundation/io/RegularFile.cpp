#include "io/RegularFile.h"

#include <Tellurion/FileStandIns.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cerrno>

namespace Tellurion {

int OpenRegularFile(const char* path, struct stat* status) {
    struct stat own;
    struct stat& state = status ? *status : own;
    if (const int stand_in = FileStandIns::Open(path, state); stand_in >= 0) return stand_in;
    if (::stat(path, &state) != 0) return -1;
    errno = S_ISDIR(state.st_mode) ? EISDIR : EINVAL;
    if (!S_ISREG(state.st_mode)) return -1;
    constexpr int kFlags = O_RDONLY | O_CLOEXEC | O_NOCTTY;
    // Another file may have taken the name since: O_NONBLOCK keeps a pipe from waiting. Only
    // a regular file can be leased to another process, which gives it up after a while.
    int descriptor = ::open(path, kFlags | O_NONBLOCK);
    if (descriptor < 0 && errno == EWOULDBLOCK) descriptor = ::open(path, kFlags);
    if (descriptor < 0) return -1;
    if (::fstat(descriptor, &state) == 0 && S_ISREG(state.st_mode)) return descriptor;
    ::close(descriptor);
    errno = EINVAL;
    return -1;
}

}  // namespace Tellurion
