#include "export/MovedAside.h"

#include <MapAnchor/BGeoReferenceWriteException.h>
#include <Tellurion/BFileAccessException.h>
#include <Tellurion/BLogger.h>
#include <Tellurion/FileBytes.h>

#include <QFileInfo>

#include <unistd.h>
#include <cstdlib>
#include <memory>

namespace MapAnchor {

using Tellurion::BFileAccessException;
using Tellurion::BFileReplacement;
using Tellurion::BLogger;
using Tellurion::BString;
using Tellurion::ELogSeverity;

namespace FileBytes = Tellurion::FileBytes;

namespace {

constexpr const char* kSource = "BRefGeoPDF::Write";
constexpr const char* kEnding = ".pdf";
constexpr mode_t kOwnerBits = 0700;
constexpr mode_t kOtherBits = 0077;
constexpr mode_t kAllBits = 07777;

/// Both keep the bytes of names that are no UTF-8.
QString ToQString(const BString& text) {
    const std::u16string& units = text.GetUnits();
    return QString::fromUtf16(units.data(), static_cast<int>(units.size()));
}
BString ToBString(const QString& text) {
    return BString(std::u16string(reinterpret_cast<const char16_t*>(text.utf16()),
                                  static_cast<std::size_t>(text.size())));
}

/// A link stays a link: what it leads to is what is written.
std::string Resolved(const std::string& path) {
    struct stat state {};
    if (::lstat(path.c_str(), &state) != 0 || !S_ISLNK(state.st_mode)) return path;
    const std::unique_ptr<char, decltype(&std::free)> real(::realpath(path.c_str(), nullptr), &std::free);
    return real ? real.get() : path;
}

struct stat StateOf(const std::string& path) {
    struct stat state {};
    ::stat(path.c_str(), &state);
    return state;
}

[[noreturn]] void ThrowImmovable() {
    throw BFileAccessException(
        kSource, "Could not create temp file for PDF export. The target file may be open or read-only.");
}

}  // namespace

MovedAside::MovedAside(const BString& target)
    : destination_(ToQString(target)), target_(Resolved(target.StdStr())) {
    const QString resolved = ToQString(BString(target_));
    // An export adds the ending that a name lacks: only through the link does it meet a
    // file of another name.
    if (resolved.endsWith(kEnding) || !destination_.endsWith(kEnding)) destination_ = resolved;
    if (target_.empty() || ::stat(target_.c_str(), &state_) != 0) return;
    if (!S_ISREG(state_.st_mode)) ThrowImmovable();
    if (!reserved_.open()) {
        BLogger::Instance()->WriteLine(ELogSeverity::Error, "BRefGeoPDF::Write Failed to open temp file");
        throw BFileAccessException(kSource, "Could not create temp File for PDF export.");
    }
    const QString name = reserved_.fileName() + kEnding;
    aside_ = ToBString(name).StdStr();
    reserved_.close();
    OpenResult();
    Move();
    name_ = name;
}

/// What belongs to the old PDF is looked at before anything of it changes.
void MovedAside::OpenResult() {
    has_own_name_ = !destination_.endsWith(kEnding);
    const QString path = has_own_name_ ? destination_ + kEnding : destination_;
    result_.emplace(ToBString(path));
    if (!result_->Open(BFileReplacement::EReadOnly::Replace) || result_->IsInPlace()) ThrowImmovable();
    if (has_own_name_) ::fchmod(result_->GetDescriptor(), state_.st_mode & kOwnerBits);
}

QString MovedAside::WorkName() const {
    return result_ ? ToQString(result_->GetTemporary()) : QString();
}

bool MovedAside::IsOnOneDevice() const {
    return state_.st_dev == StateOf(ToBString(QFileInfo(reserved_.fileName()).path()).StdStr()).st_dev;
}

void MovedAside::Move() {
    const bool is_private = (state_.st_mode & kOtherBits) == 0;
    const bool can_be_private = is_private || (state_.st_nlink == 1 && state_.st_uid == ::geteuid());
    bool moved = false;
    try {
        moved = IsOnOneDevice() && can_be_private ? MoveByRename() : MoveByCopy();
    } catch (...) {
        // No destructor runs after a constructor that failed.
        ::chmod(target_.c_str(), state_.st_mode & kAllBits);
        if (::access(target_.c_str(), F_OK) == 0) ::unlink(aside_.c_str());
        throw;
    }
    if (!moved) ThrowImmovable();
    away_ = true;
}

bool MovedAside::MoveByRename() {
    if (::chmod(target_.c_str(), state_.st_mode & kOwnerBits) != 0) return MoveByCopy();
    if (FileBytes::Move(target_, aside_) == 0) return true;
    ::chmod(target_.c_str(), state_.st_mode & kAllBits);
    return false;
}

bool MovedAside::MoveByCopy() {
    if (FileBytes::CopyToNew(target_, aside_) != 0) return false;
    waiting_ = result_->GetTemporary().StdStr() + "o";
    if (FileBytes::Move(target_, waiting_) == 0) return true;
    waiting_.clear();
    ::unlink(aside_.c_str());
    return false;
}

MovedAside::~MovedAside() {
    if (!away_) return;
    if (!waiting_.empty()) ::unlink(waiting_.c_str());
    BLogger::Instance()->WriteLine(ELogSeverity::Error,
                                   "BRefGeoPDF::Write The PDF file <%ls> stands under the name <%ls>",
                                   BString(target_), BString(aside_));
}

void MovedAside::Restore() {
    if (!away_ || FileBytes::Move(waiting_.empty() ? aside_ : waiting_, target_) != 0) return;
    away_ = false;
    if (waiting_.empty())
        ::chmod(target_.c_str(), state_.st_mode & kAllBits);
    else
        ::unlink(aside_.c_str());
}

void MovedAside::RestoreIfGone() {
    struct stat now {};
    if (::stat(target_.c_str(), &now) != 0) Restore();
}

void MovedAside::ReplaceByResult() {
    if (!away_) return;
    if (has_own_name_) ::fchmod(result_->GetDescriptor(), state_.st_mode & kAllBits);
    if (!result_->Commit()) {
        Restore();
        throw BGeoReferenceWriteException(
            kSource, BString::Format("Failed writing PDF file <%ls>: %ls.", result_->GetTarget(),
                                     result_->GetFailure()));
    }
    for (const BString& loss : result_->GetLosses())
        BLogger::Instance()->WriteLine(ELogSeverity::Error, "%s %ls", kSource, loss);
    if (::unlink(aside_.c_str()) == 0) away_ = false;
    if (!waiting_.empty()) ::unlink(waiting_.c_str());
    waiting_.clear();
}

}  // namespace MapAnchor
