// Makes one system call, or one allocation, of a program fail: as a library to preload, or
// within a program that calls FaultShimStart(). The environment says what:
//   FAULT_CALL    a kind of call as in kTrapped, any of these, or malloc
//   FAULT_NUMBER  which one of them, counted from 1
//   FAULT_KIND    an error (EIO, ENOSPC, EACCES), short (half is read or written), kill, or
//                 disk-full (this write and all that follow, where they would make the
//                 file longer)
//   FAULT_UNDER   a folder: only calls on files below it count
//   FAULT_LOG     a file that gets the kind of the call that fails
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
/// Runs at the start of a program as well, which then has the environment already.
[[gnu::constructor]] void FaultShimStart();
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

/// Calls of one kind, and how the file that they are about is found.
struct Trapped {
    const char* call;
    int descriptor;  ///< position of the argument, -1 for none
    int path;
    int size;         ///< of what is read or written
    int numbers[10];  ///< ends with a zero, which only the first can be by itself
};

constexpr Trapped kTrapped[] = {
    {"read", 0, -1, 2, {SYS_read, SYS_pread64}},
    {"read", 0, -1, -1, {SYS_readv, SYS_preadv, SYS_getdents64}},
    {"write", 0, -1, 2, {SYS_write, SYS_pwrite64}},
    {"write", 0, -1, 3, {SYS_sendfile}},
    {"write", 2, -1, 4, {SYS_copy_file_range}},
    {"write", 0, -1, -1, {SYS_writev, SYS_pwritev, SYS_fallocate}},
    {"seek", 0, -1, -1, {SYS_lseek}},
    {"sync", 0, -1, -1, {SYS_fsync, SYS_fdatasync}},
    {"truncate", 0, -1, -1, {SYS_ftruncate}},
    {"truncate", -1, 0, -1, {SYS_truncate}},
    {"close", 0, -1, -1, {SYS_close}},
    {"open", -1, 0, -1, {SYS_open, SYS_creat}},
    {"open", 0, 1, -1, {SYS_openat}},
    {"rename", -1, 0, -1, {SYS_rename}},
    {"rename", 0, 1, -1, {SYS_renameat, SYS_renameat2}},
    {"unlink", -1, 0, -1, {SYS_unlink, SYS_rmdir}},
    {"unlink", 0, 1, -1, {SYS_unlinkat}},
    {"link", -1, 1, -1, {SYS_link, SYS_symlink}},
    {"link", 2, 3, -1, {SYS_linkat}},
    {"mkdir", -1, 0, -1, {SYS_mkdir}},
    {"mkdir", 0, 1, -1, {SYS_mkdirat}},
    {"stat", 0, -1, -1, {SYS_fstat, SYS_fstatfs}},
    {"stat", -1, 0, -1, {SYS_stat, SYS_lstat, SYS_access, SYS_statfs}},
    {"stat", 0, 1, -1, {SYS_newfstatat, SYS_statx, SYS_faccessat, SYS_faccessat2}},
    {"mode", 0, -1, -1, {SYS_fchmod, SYS_fchown, SYS_fgetxattr, SYS_fsetxattr, SYS_flistxattr, SYS_ioctl}},
    {"mode", -1, 0, -1, {SYS_chmod, SYS_chown, SYS_lchown, SYS_getxattr, SYS_setxattr, SYS_listxattr}},
    {"mode", 0, 1, -1, {SYS_fchmodat, SYS_fchownat, SYS_utimensat}},
    {"lock", 0, -1, -1, {SYS_fcntl, SYS_flock}},
};

const Trapped* Find(int number) {
    for (const Trapped& trapped : kTrapped)
        for (int i = 0; i == 0 || trapped.numbers[i] != 0; ++i)
            if (trapped.numbers[i] == number) return &trapped;
    return nullptr;
}

long Call(long number, const long (&a)[6]) {
    return FaultShimCall(number, a[0], a[1], a[2], a[3], a[4], a[5]);
}

bool IsUnder(const char* path) {
    return std::strncmp(path, setting.under, std::strlen(setting.under)) == 0;
}

/// The file of a descriptor: false for one that has no name.
bool NameOf(int descriptor, char (&path)[4096]) {
    char link[32];
    std::snprintf(link, sizeof link, "/proc/self/fd/%d", descriptor);
    const ssize_t length = readlink(link, path, sizeof path - 1);
    path[length < 0 ? 0 : length] = '\0';
    return length > 0;
}

bool IsMeant(const Trapped& trapped, const long (&a)[6]) {
    const bool any = std::strcmp(setting.call, "any") == 0;
    if (!any && std::strcmp(setting.call, trapped.call) != 0) return false;
    const char* name = trapped.path < 0 ? "" : reinterpret_cast<const char*>(a[trapped.path]);
    if (name && name[0] == '/') return IsUnder(name);
    // Without a name, or in the folder that the descriptor stands for.
    char path[4096];
    return name && trapped.descriptor >= 0 && NameOf(static_cast<int>(a[trapped.descriptor]), path) &&
           IsUnder(path);
}

void Note(const char* call) {
    if (!setting.log) return;
    const long made =
        Call(SYS_open, {reinterpret_cast<long>(setting.log), O_WRONLY | O_CREAT | O_CLOEXEC, 0600, 0, 0, 0});
    Call(SYS_write, {made, reinterpret_cast<long>(call), static_cast<long>(std::strlen(call)), 0, 0, 0});
    Call(SYS_close, {made, 0, 0, 0, 0, 0});
}

/// Counts; true when the fault strikes now.
bool Strikes(const char* call) {
    const long count = ++seen;
    const bool now = setting.disk_full ? count >= setting.number : count == setting.number;
    if (!now) return false;
    Note(call);
    if (setting.kind == Kind::Kill) kill(getpid(), SIGKILL);
    return true;
}

/// A full disk takes what a file has room for already.
bool HasRoom(const Trapped& trapped, int number, const long (&a)[6]) {
    if (!setting.disk_full || trapped.size < 0) return false;
    const long file = a[trapped.descriptor];
    struct stat state {};
    if (Call(SYS_fstat, {file, reinterpret_cast<long>(&state), 0, 0, 0, 0}) != 0) return false;
    const long at = number == SYS_pwrite64 ? a[3] : Call(SYS_lseek, {file, 0, SEEK_CUR, 0, 0, 0});
    return at + a[trapped.size] <= state.st_size;
}

long Struck(const Trapped& trapped, int number, long (&a)[6]) {
    if (HasRoom(trapped, number, a)) return Call(number, a);
    if (setting.kind == Kind::Short && trapped.size >= 0) {
        a[trapped.size] = (a[trapped.size] + 1) / 2;
        return Call(number, a);
    }
    if (number == SYS_close) Call(SYS_close, a);
    return -setting.error;
}

void OnCall(int, siginfo_t* info, void* context) {
    const int kept = errno;
    auto& registers = static_cast<ucontext_t*>(context)->uc_mcontext.gregs;
    long a[6] = {registers[REG_RDI], registers[REG_RSI], registers[REG_RDX],
                 registers[REG_R10], registers[REG_R8],  registers[REG_R9]};
    const Trapped* trapped = Find(info->si_syscall);
    const bool struck = trapped && IsMeant(*trapped, a) && Strikes(trapped->call);
    registers[REG_RAX] = struck ? Struck(*trapped, info->si_syscall, a) : Call(info->si_syscall, a);
    errno = kept;
}

void InstallFilter() {
    constexpr int kMax = 100;
    constexpr int kHead = 5;
    const auto home = reinterpret_cast<unsigned long>(FaultShimReturn);
    sock_filter filter[kHead + kMax + 2] = {
        // From the one place: let it pass.
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, instruction_pointer)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(home), 0, 2),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, instruction_pointer) + 4),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(home >> 32U), kMax + 1, 0),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
    };
    for (int number = 0, at = 0; at < kMax; ++number) {
        while (number < 512 && !Find(number))
            ++number;
        filter[kHead + at] = BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(number),
                                      static_cast<unsigned char>(kMax - at), 0);
        ++at;
    }
    filter[kHead + kMax] = BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW);
    filter[kHead + kMax + 1] = BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_TRAP);
    struct sigaction action {};
    action.sa_sigaction = OnCall;
    action.sa_flags = SA_SIGINFO | SA_NODEFER;
    const sock_fprog program = {kHead + kMax + 2, filter};
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
    if (!in_allocations || !Strikes("malloc")) return false;
    errno = ENOMEM;
    return true;
}

}  // namespace

extern "C" {

void FaultShimStart() {
    const char* call = std::getenv("FAULT_CALL");
    const char* number = std::getenv("FAULT_NUMBER");
    const char* kind = std::getenv("FAULT_KIND");
    if (!call || !number || setting.call) return;
    setting.call = call;
    setting.number = std::atol(number);
    SetKind(kind ? kind : "EIO");
    if (const char* under = std::getenv("FAULT_UNDER")) setting.under = under;
    setting.log = std::getenv("FAULT_LOG");
    in_allocations = std::strcmp(call, "malloc") == 0;
    if (!in_allocations) InstallFilter();
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
