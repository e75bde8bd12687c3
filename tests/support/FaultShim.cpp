// A library to preload that lets one system call, or one allocation, of a program fail.
// It is told what by the environment:
//   FAULT_CALL    write, rename, close, open, unlink, link, any of these, or malloc,
//                 whose calls count once the program has called FaultShimArm()
//   FAULT_NUMBER  which one of them, counted from 1
//   FAULT_KIND    an error (EIO, ENOSPC, EACCES), short (half is written), kill, or
//                 disk-full (this write and all that follow, where they would make the
//                 file longer)
//   FAULT_UNDER   a folder: only calls on files below it count
//   FAULT_LOG     a file that is made when the fault strikes
// System calls are caught by a filter of the kernel, so that those within the C library
// are caught as well.

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <ucontext.h>
#include <unistd.h>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>

extern "C" {
/// The one place from which calls pass the filter.
long FaultShimCall(long number, long a, long b, long c, long d, long e, long f);
extern const char FaultShimReturn[];
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* old, std::size_t size);
[[gnu::visibility("default")]] void FaultShimArm(bool on);
[[gnu::visibility("default")]] void* malloc(std::size_t size);
[[gnu::visibility("default")]] void* calloc(std::size_t count, std::size_t size);
[[gnu::visibility("default")]] void* realloc(void* old, std::size_t size);
}

asm(".text\n"
    ".globl FaultShimCall\n.hidden FaultShimCall\n.type FaultShimCall,@function\n"
    "FaultShimCall:\n"
    "  mov %rdi, %rax\n  mov %rsi, %rdi\n  mov %rdx, %rsi\n  mov %rcx, %rdx\n"
    "  mov %r8, %r10\n  mov %r9, %r8\n  mov 8(%rsp), %r9\n  syscall\n"
    ".globl FaultShimReturn\n.hidden FaultShimReturn\n"
    "FaultShimReturn:\n  ret\n");

namespace {

enum class Kind { Error, Short, Kill };

struct Setting {
    const char* call = nullptr;
    long number = 0;
    Kind kind = Kind::Error;
    int error = 0;
    bool disk_full = false;
    const char* under = "";
    const char* log = nullptr;
};
Setting setting;
std::atomic<long> seen{0};

/// What a call does, and how the file that it is about is found.
struct Trapped {
    int number;
    const char* call;
    int descriptor;  ///< position of the argument, -1 for none
    int path;
    int size;  ///< of a write
};

constexpr Trapped kTrapped[] = {
    {SYS_write, "write", 0, -1, 2},
    {SYS_pwrite64, "write", 0, -1, 2},
    {SYS_writev, "write", 0, -1, -1},
    {SYS_sendfile, "write", 0, -1, 3},
    {SYS_copy_file_range, "write", 2, -1, 4},
    {SYS_rename, "rename", -1, 0, -1},
    {SYS_renameat, "rename", -1, 1, -1},
    {SYS_renameat2, "rename", -1, 1, -1},
    {SYS_close, "close", 0, -1, -1},
    {SYS_open, "open", -1, 0, -1},
    {SYS_creat, "open", -1, 0, -1},
    {SYS_openat, "open", -1, 1, -1},
    {SYS_unlink, "unlink", -1, 0, -1},
    {SYS_unlinkat, "unlink", -1, 1, -1},
    {SYS_link, "link", -1, 0, -1},
    {SYS_linkat, "link", -1, 1, -1},
};

const Trapped* Find(int number) {
    for (const Trapped& trapped : kTrapped)
        if (trapped.number == number) return &trapped;
    return nullptr;
}

long Call(long number, const long (&a)[6]) {
    return FaultShimCall(number, a[0], a[1], a[2], a[3], a[4], a[5]);
}

bool IsUnder(const char* path) {
    return std::strncmp(path, setting.under, std::strlen(setting.under)) == 0;
}

bool IsMeant(const Trapped& trapped, const long (&a)[6]) {
    if (std::strcmp(setting.call, "any") != 0 && std::strcmp(setting.call, trapped.call) != 0) return false;
    if (trapped.path >= 0) return IsUnder(reinterpret_cast<const char*>(a[trapped.path]));
    char link[32];
    char path[4096];
    std::snprintf(link, sizeof link, "/proc/self/fd/%d", static_cast<int>(a[trapped.descriptor]));
    const ssize_t length = readlink(link, path, sizeof path - 1);
    if (length < 0) return false;
    path[length] = '\0';
    return IsUnder(path);
}

void Note() {
    if (!setting.log) return;
    const long made =
        Call(SYS_open, {reinterpret_cast<long>(setting.log), O_WRONLY | O_CREAT | O_CLOEXEC, 0600, 0, 0, 0});
    Call(SYS_close, {made, 0, 0, 0, 0, 0});
}

/// Counts; true when the fault strikes now.
bool Strikes() {
    const long count = ++seen;
    const bool now = setting.disk_full ? count >= setting.number : count == setting.number;
    if (!now) return false;
    Note();
    if (setting.kind == Kind::Kill) kill(getpid(), SIGKILL);
    return true;
}

/// A full disk takes what a file has room for already.
bool HasRoom(const Trapped& trapped, const long (&a)[6]) {
    if (!setting.disk_full || trapped.size < 0) return false;
    const int file = static_cast<int>(a[trapped.descriptor]);
    struct stat state {};
    const long at = trapped.number == SYS_pwrite64 ? a[3] : lseek(file, 0, SEEK_CUR);
    return fstat(file, &state) == 0 && at + a[trapped.size] <= state.st_size;
}

long Struck(const Trapped& trapped, long (&a)[6]) {
    if (HasRoom(trapped, a)) return Call(trapped.number, a);
    if (setting.kind == Kind::Short && trapped.size >= 0) {
        a[trapped.size] = (a[trapped.size] + 1) / 2;
        return Call(trapped.number, a);
    }
    if (trapped.number == SYS_close) Call(SYS_close, a);
    return -setting.error;
}

void OnCall(int, siginfo_t* info, void* context) {
    const int kept = errno;
    auto& registers = static_cast<ucontext_t*>(context)->uc_mcontext.gregs;
    long a[6] = {registers[REG_RDI], registers[REG_RSI], registers[REG_RDX],
                 registers[REG_R10], registers[REG_R8],  registers[REG_R9]};
    const Trapped* trapped = Find(info->si_syscall);
    const bool struck = trapped && IsMeant(*trapped, a) && Strikes();
    registers[REG_RAX] = struck ? Struck(*trapped, a) : Call(info->si_syscall, a);
    errno = kept;
}

void InstallFilter() {
    constexpr std::size_t kCount = sizeof kTrapped / sizeof *kTrapped;
    constexpr std::size_t kHead = 5;
    const auto home = reinterpret_cast<unsigned long>(FaultShimReturn);
    sock_filter filter[kHead + kCount + 2] = {
        // From the one place: let it pass.
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, instruction_pointer)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(home), 0, 2),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, instruction_pointer) + 4),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(home >> 32U), kCount + 1, 0),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
    };
    for (std::size_t i = 0; i < kCount; ++i)
        filter[kHead + i] = BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(kTrapped[i].number),
                                     static_cast<unsigned char>(kCount - i), 0);
    filter[kHead + kCount] = BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW);
    filter[kHead + kCount + 1] = BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_TRAP);
    struct sigaction action {};
    action.sa_sigaction = OnCall;
    action.sa_flags = SA_SIGINFO | SA_NODEFER;
    const sock_fprog program = {kHead + kCount + 2, filter};
    if (sigaction(SIGSYS, &action, nullptr) != 0 || prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
        prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0)
        _exit(127);
}

void SetKind(const char* kind) {
    setting.disk_full = std::strcmp(kind, "disk-full") == 0;
    if (std::strcmp(kind, "kill") == 0) setting.kind = Kind::Kill;
    if (std::strcmp(kind, "short") == 0) setting.kind = Kind::Short;
    setting.error = EIO;
    if (setting.disk_full || std::strcmp(kind, "ENOSPC") == 0) setting.error = ENOSPC;
    if (std::strcmp(kind, "EACCES") == 0) setting.error = EACCES;
}

bool in_allocations = false;

/// True when an allocation has to fail.
bool Starves() {
    if (!in_allocations || !Strikes()) return false;
    errno = ENOMEM;
    return true;
}

[[gnu::constructor]] void Start() {
    const char* call = std::getenv("FAULT_CALL");
    const char* number = std::getenv("FAULT_NUMBER");
    const char* kind = std::getenv("FAULT_KIND");
    if (!call || !number) return;
    setting.call = call;
    setting.number = std::atol(number);
    SetKind(kind ? kind : "EIO");
    if (const char* under = std::getenv("FAULT_UNDER")) setting.under = under;
    setting.log = std::getenv("FAULT_LOG");
    if (std::strcmp(call, "malloc") != 0) InstallFilter();
}

}  // namespace

extern "C" {

void FaultShimArm(bool on) {
    in_allocations = on && setting.call && std::strcmp(setting.call, "malloc") == 0;
}

void* malloc(std::size_t size) {
    return Starves() ? nullptr : __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) {
    return Starves() ? nullptr : __libc_calloc(count, size);
}

void* realloc(void* old, std::size_t size) {
    return Starves() ? nullptr : __libc_realloc(old, size);
}
}
