#include <Tellurion/BFileReplacement.h>

#include <Tellurion/FileBytes.h>
#include <Tellurion/NewFilesOnly.h>

#include "io/FileAttributes.h"
#include "io/TargetName.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

namespace Tellurion {
namespace {

constexpr mode_t kOwnerAlone = 0600;
constexpr mode_t kAsOpenDoes = 0666;
/// An old content that is larger is not written over: it could not be put back.
constexpr off_t kMaxKept = off_t{64} << 20;

void CloseFile(int& file) {
    if (file >= 0) ::close(file);
    file = -1;
}

std::string NameOfDescriptor(int file) {
    return "/proc/self/fd/" + std::to_string(file);
}

int MakeMemoryFile() {
    return ::memfd_create("mapanchor", MFD_CLOEXEC);
}

bool CannotTakeNewFiles(int error) {
    return error == EACCES || error == EPERM || error == EROFS || error == ENAMETOOLONG;
}

/// A mount point, or a file of somebody else in a sticky folder.
bool CannotBeReplaced(int error) {
    return error == EBUSY || error == EXDEV || error == EACCES || error == EPERM;
}

}  // namespace

struct BFileReplacement::State {
    enum class EWay { None, Beside, InMemory, Direct };

    explicit State(const BString& given) : target(given) {}

    /// Keeps the first failure. `what` is said where the reason alone would mislead.
    bool Fail(int number, const std::string& what = {}) {
        if (error == 0) {
            error = number;
            failure = BString(what + std::strerror(number));
        }
        return false;
    }
    void Lose(const BString& what, int number) {
        losses.push_back(BString::Format("File <%ls>: %ls (%s).", target, what, std::strerror(number)));
    }
    bool OpenDirect();
    bool OpenOld(EReadOnly read_only);
    bool OpenNew();
    bool CanBePutBack() const;
    void KeepAttributes();
    bool CommitBeside(EAfterPowerFailure after);
    bool MayExist() const { return existing == EExisting::Replace && !NewFilesOnly::Protects(name.path); }
    /// A link that leads nowhere takes its name as well.
    bool IsTaken() const {
        struct stat found {};
        return name.kind != TargetName::EKind::Missing || ::lstat(target.StdStr().c_str(), &found) == 0;
    }
    int MoveToTarget() const;
    bool OverwriteOld();
    bool IsOldAtTarget() const;
    void UpdateOtherNames();
    bool LinkOldToTarget();
    void SyncTargetsFolder();

    BString target;
    EExisting existing = EExisting::Replace;
    TargetName name;
    std::string temporary;  ///< a file that exists; empty for none
    EWay way = EWay::None;
    int descriptor = -1;
    int old = -1;  ///< the file at the target, open; -1 for none
    bool old_is_writable = false;
    FileAttributes attributes;
    int error = 0;
    BString failure;
    std::vector<BString> losses;
};

BFileReplacement::BFileReplacement(const BString& target) : state_(std::make_unique<State>(target)) {}

BFileReplacement::~BFileReplacement() {
    Abort();
}

bool BFileReplacement::State::OpenDirect() {
    descriptor = ::open(name.path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, kAsOpenDoes);
    if (descriptor < 0) return Fail(errno);
    way = EWay::Direct;
    return true;
}

/// Nothing is written to it before the end, but what may not be written is found now.
bool BFileReplacement::State::OpenOld(EReadOnly read_only) {
    for (const int access : {O_RDWR, O_WRONLY, O_RDONLY}) {
        if (access == O_RDONLY && read_only == EReadOnly::Refuse) break;
        old = ::open(name.path.c_str(), access | O_CLOEXEC);
        old_is_writable = old >= 0 && access != O_RDONLY;
        if (old >= 0 || (errno != EACCES && errno != EROFS && errno != EPERM)) break;
    }
    if (old < 0 || !attributes.Read(old)) return Fail(errno);
    return true;
}

/// Whether the old content can be kept in memory while the file is written over.
bool BFileReplacement::State::CanBePutBack() const {
    return old >= 0 && (::fcntl(old, F_GETFL) & O_ACCMODE) == O_RDWR &&
           attributes.State().st_size <= kMaxKept;
}

bool BFileReplacement::State::OpenNew() {
    descriptor = name.MakeBeside(old >= 0 ? kOwnerAlone : kAsOpenDoes, temporary);
    if (descriptor >= 0) {
        way = EWay::Beside;
        return true;
    }
    const int reason = errno;
    if (!CannotTakeNewFiles(reason) || !CanBePutBack())
        return Fail(reason, "cannot create a file in its folder: ");
    descriptor = MakeMemoryFile();
    if (descriptor < 0) return Fail(errno, "cannot collect its content in memory: ");
    way = EWay::InMemory;
    return true;
}

void BFileReplacement::SetExisting(EExisting existing) {
    state_->existing = existing;
}

bool BFileReplacement::Open(EReadOnly read_only) {
    Abort();
    State& state = *state_;
    state.error = 0;
    state.failure = BString();
    state.losses.clear();
    const int unknown = state.name.Find(state.target);
    bool opened = unknown == 0 || state.Fail(unknown);
    if (opened && !state.MayExist() && state.IsTaken()) opened = state.Fail(EEXIST);
    if (opened && state.name.kind == TargetName::EKind::Special) return state.OpenDirect();
    if (opened && state.name.kind == TargetName::EKind::File) opened = state.OpenOld(read_only);
    if (!opened || !state.OpenNew()) Abort();
    return state.way != State::EWay::None;
}

bool BFileReplacement::Write(std::string_view bytes) {
    State& state = *state_;
    if (state.descriptor < 0) return state.Fail(EBADF);
    if (state.error != 0) return false;
    const int error = FileBytes::WriteAll(state.descriptor, bytes);
    return error == 0 || state.Fail(error);
}

int BFileReplacement::GetDescriptor() const {
    return state_->descriptor;
}

BString BFileReplacement::GetTemporary() const {
    if (state_->descriptor < 0) return {};
    return BString(state_->temporary.empty() ? NameOfDescriptor(state_->descriptor) : state_->temporary);
}

bool BFileReplacement::IsInPlace() const {
    return state_->way == State::EWay::InMemory;
}

bool BFileReplacement::Adopt(const BString& file) {
    State& state = *state_;
    if (state.error != 0) return false;
    int finished = ::open(file.StdStr().c_str(), O_RDWR | O_CLOEXEC);
    if (finished < 0) return state.Fail(errno, "cannot open the new content: ");
    if (state.way == State::EWay::Beside && ::rename(file.StdStr().c_str(), state.temporary.c_str()) == 0) {
        CloseFile(state.descriptor);
        state.descriptor = finished;
        return true;
    }
    const int error = FileBytes::Copy(finished, state.descriptor);
    CloseFile(finished);
    return error == 0 || state.Fail(error);
}

bool BFileReplacement::Commit(EAfterPowerFailure after) {
    State& state = *state_;
    if (state.descriptor < 0) return state.Fail(EBADF);
    bool done = state.error == 0;
    if (done && state.way == State::EWay::Beside) done = state.CommitBeside(after);
    if (done && state.way == State::EWay::InMemory) done = state.OverwriteOld();
    if (state.way == State::EWay::Direct) {
        // What a device did not take shows here at the latest.
        const int failed = ::close(state.descriptor) == 0 ? 0 : errno;
        state.descriptor = -1;
        if (done && failed != 0) done = state.Fail(failed);
    }
    Abort();
    return done;
}

void BFileReplacement::State::KeepAttributes() {
    std::vector<BString> lost;
    attributes.ApplyTo(descriptor, lost);
    for (const BString& what : lost)
        losses.push_back(BString::Format("File <%ls> was replaced; it could not keep %ls.", target, what));
}

/// Zero, or the number of the error.
int BFileReplacement::State::MoveToTarget() const {
    if (MayExist()) return ::rename(temporary.c_str(), name.path.c_str()) == 0 ? 0 : errno;
    if (::renameat2(AT_FDCWD, temporary.c_str(), AT_FDCWD, name.path.c_str(), RENAME_NOREPLACE) == 0)
        return 0;
    if (errno != EINVAL && errno != ENOSYS) return errno;
    // A file system without such a rename; a link refuses a name that is taken as well.
    if (::link(temporary.c_str(), name.path.c_str()) != 0) return errno;
    ::unlink(temporary.c_str());
    return 0;
}

bool BFileReplacement::State::CommitBeside(EAfterPowerFailure after) {
    if (old >= 0) KeepAttributes();
    if (const int failed = FileBytes::Sync(descriptor)) return Fail(failed);
    if (const int reason = MoveToTarget(); reason != 0) {
        losses.clear();
        const bool can_overwrite = CannotBeReplaced(reason) && IsOldAtTarget() && CanBePutBack();
        return can_overwrite ? OverwriteOld() : Fail(reason, "cannot replace it: ");
    }
    temporary.clear();
    NewFilesOnly::Add(name.path);
    if (after == EAfterPowerFailure::New) SyncTargetsFolder();
    if (old >= 0 && attributes.State().st_nlink > 1) UpdateOtherNames();
    return true;
}

bool BFileReplacement::State::IsOldAtTarget() const {
    struct stat now {};
    return old >= 0 && ::stat(name.path.c_str(), &now) == 0 && now.st_dev == attributes.State().st_dev &&
           now.st_ino == attributes.State().st_ino;
}

bool BFileReplacement::State::OverwriteOld() {
    int kept = MakeMemoryFile();
    const int failed = kept < 0 ? errno : FileBytes::Overwrite(old, descriptor, kept);
    CloseFile(kept);
    return failed == 0 || Fail(failed);
}

void BFileReplacement::State::SyncTargetsFolder() {
    if (const int failed = FileBytes::SyncFolder(name.folder))
        Lose("was replaced, but a power failure may still bring the old content back", failed);
}

/// The target is whole in all of this: first by its new file, then by the old one with
/// the same content.
void BFileReplacement::State::UpdateOtherNames() {
    struct stat now {};
    if (::fstat(old, &now) != 0 || now.st_nlink == 0) return;
    if (!old_is_writable) return Lose("was replaced; its other hard links keep the old content", EACCES);
    int kept = CanBePutBack() ? MakeMemoryFile() : -1;
    const int failed = FileBytes::Overwrite(old, descriptor, kept);
    CloseFile(kept);
    if (failed != 0) return Lose("was replaced; its other hard links could not be written", failed);
    if (!LinkOldToTarget())
        Lose("was replaced; it is no hard link of its other names any more", errno);
    else
        SyncTargetsFolder();
}

bool BFileReplacement::State::LinkOldToTarget() {
    const std::string from = NameOfDescriptor(old);
    if (!name.LinkBeside(from, temporary)) return false;
    if (::rename(temporary.c_str(), name.path.c_str()) != 0) return false;
    temporary.clear();
    return true;
}

void BFileReplacement::Abort() {
    State& state = *state_;
    CloseFile(state.descriptor);
    CloseFile(state.old);
    if (!state.temporary.empty()) ::unlink(state.temporary.c_str());
    state.temporary.clear();
    state.way = State::EWay::None;
}

const BString& BFileReplacement::GetTarget() const {
    return state_->target;
}

int BFileReplacement::GetError() const {
    return state_->error;
}

const BString& BFileReplacement::GetFailure() const {
    return state_->failure;
}

const std::vector<BString>& BFileReplacement::GetLosses() const {
    return state_->losses;
}

}  // namespace Tellurion
