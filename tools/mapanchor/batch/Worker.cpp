#include "batch/Worker.h"

#include "batch/AllocationWatch.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <array>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <new>
#include <stdexcept>

namespace Tool {

namespace {

constexpr int kOutOfMemory = 77;

struct Pipe {
    int read_end = -1;
    int write_end = -1;
};

Pipe MakePipe() {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        throw std::runtime_error(std::string("no pipe to a worker: ") + std::strerror(errno));
    return {ends[0], ends[1]};
}

/// Limits the memory of this process to some bytes beyond what it has.
class MemoryLimit {
public:
    explicit MemoryLimit(std::uint64_t bytes)
        : bytes_(bytes), pages_(bytes == 0 ? -1 : open("/proc/self/statm", O_RDONLY | O_CLOEXEC)) {}

    /// The hard limit stays, so that the soft one can follow from file to file.
    void Follow() {
        const std::uint64_t mapped = MappedBytes();
        rlimit limit{};
        if (mapped == 0 || mapped == mapped_ || getrlimit(RLIMIT_AS, &limit) != 0) return;
        mapped_ = mapped;
        limit.rlim_cur = mapped + bytes_;
        if (limit.rlim_max != RLIM_INFINITY && limit.rlim_cur > limit.rlim_max)
            limit.rlim_cur = limit.rlim_max;
        setrlimit(RLIMIT_AS, &limit);
    }

private:
    std::uint64_t MappedBytes() const {
        std::array<char, 32> text{};
        const ssize_t count = pages_ < 0 ? 0 : pread(pages_, text.data(), text.size(), 0);
        std::uint64_t pages = 0;
        if (count > 0) std::from_chars(text.data(), text.data() + count, pages);
        return pages * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
    }

    std::uint64_t bytes_;
    int pages_;
    std::uint64_t mapped_ = 0;
};

[[noreturn]] void Serve(int names, int answers, const Answer& answer, const Limits& limits) {
    ForgetFailedAllocations();
    MemoryLimit memory(limits.memory);
    TextReceiver receiver;
    try {
        while (const auto name = receiver.Next(names)) {
            memory.Follow();
            const std::string text = answer(*name);
            if (AllocationHasFailed()) _exit(kOutOfMemory);
            if (!SendText(answers, text)) break;
        }
    } catch (const std::bad_alloc&) {
        _exit(kOutOfMemory);
    }
    _exit(0);
}

/// What a library prints is no data of ours, and no end of the parent's goes unnoticed.
void BecomeWorker(pid_t parent, const std::vector<int>& strangers) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) _exit(0);
    for (const int descriptor : strangers)
        close(descriptor);
    dup2(STDERR_FILENO, STDOUT_FILENO);
    const int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
    if (nothing >= 0) dup2(nothing, STDIN_FILENO);
}

}  // namespace

Worker::Worker(const Answer& answer, const Limits& limits, const std::vector<int>& strangers) {
    const Pipe names = MakePipe();
    const Pipe answers = MakePipe();
    const pid_t parent = getpid();
    process_ = fork();
    if (process_ < 0) throw std::runtime_error(std::string("no worker process: ") + std::strerror(errno));
    if (process_ == 0) {
        close(names.write_end);
        close(answers.read_end);
        BecomeWorker(parent, strangers);
        Serve(names.read_end, answers.write_end, answer, limits);
    }
    close(names.read_end);
    close(answers.write_end);
    names_ = names.write_end;
    answers_ = answers.read_end;
}

Worker::~Worker() {
    End();
    close(names_);
    close(answers_);
}

std::string Worker::End() {
    if (process_ < 0) return {};
    kill(process_, SIGKILL);
    int state = 0;
    while (waitpid(process_, &state, 0) < 0 && errno == EINTR) {
    }
    process_ = -1;
    ended_for_memory_ = WIFEXITED(state) && WEXITSTATUS(state) == kOutOfMemory;
    if (WIFEXITED(state)) return "exit status " + std::to_string(WEXITSTATUS(state));
    return "signal " + std::to_string(WTERMSIG(state)) + " (" + strsignal(WTERMSIG(state)) + ")";
}

}  // namespace Tool
