#include "terminal/TargetFile.h"

#include <Tellurion/BFileReplacement.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace Tool {

namespace fs = std::filesystem;

namespace {

constexpr const char* kFolderPattern = ".mapanchor-XXXXXX";

[[noreturn]] void Fail(const std::string& file, const char* what, int error) {
    if (error == EEXIST) throw std::runtime_error(ExistsText(file));
    throw std::runtime_error("File <" + file + "> cannot be " + what + ": " + ReasonOf(error) +
                             (error == ENOENT ? "; make its folder first." : "."));
}

/// Zero, or the number of the error. Not every file system can refuse to replace a file in one step.
int Rename(const fs::path& from, const fs::path& to, bool overwrite) {
    const unsigned int flags = overwrite ? 0 : RENAME_NOREPLACE;
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), flags) == 0) return 0;
    if (errno != EINVAL) return errno;
    std::error_code ignored;
    if (!overwrite && fs::exists(fs::symlink_status(to, ignored))) return EEXIST;
    return std::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

/// Where a link leads to; the folder must exist.
fs::path Followed(const fs::path& target) {
    std::error_code error;
    const fs::path real = fs::canonical(target, error);
    return error ? fs::absolute(target) : real;
}

}  // namespace

std::string ReasonOf(int error) {
    return std::generic_category().message(error);
}

bool IsSameFile(const std::string& a, const std::string& b) {
    std::error_code error;
    return fs::equivalent(a, b, error) && !error;
}

std::string ExistsText(const std::string& file) {
    return "File <" + file + "> exists; --overwrite replaces it.";
}

void WriteWholeFile(const std::string& file, const std::string& text, bool overwrite) {
    using Tellurion::BFileReplacement;
    BFileReplacement target{Tellurion::BString(file)};
    target.SetExisting(overwrite ? BFileReplacement::EExisting::Replace
                                 : BFileReplacement::EExisting::Refuse);
    if (!target.Open()) Fail(file, "created", target.GetError());
    target.Write(text);
    if (!target.Commit()) Fail(file, "written", target.GetError());
}

ReservedTarget::ReservedTarget(std::string file, bool overwrite) : file_(std::move(file)) {
    std::error_code ignored;
    if (!overwrite && fs::exists(fs::symlink_status(file_, ignored))) Fail(file_, "created", EEXIST);
    TryToWrite();
}

/// A file is not created here: a process that is killed would leave it empty.
void ReservedTarget::TryToWrite() {
    // A pipe without a reader is no target to wait for.
    const int descriptor = open(file_.c_str(), O_WRONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor >= 0) {
        close(descriptor);
        return;
    }
    if (errno != ENOENT) Fail(file_, "written", errno);
    const std::string folder = fs::absolute(Followed(file_)).parent_path().string();
    if (access(folder.c_str(), W_OK | X_OK) != 0) Fail(file_, "written", errno);
    is_new_ = true;
}

ReservedTarget::~ReservedTarget() {
    std::error_code error;
    if (is_new_ && fs::file_size(file_, error) == 0 && !error) fs::remove(file_, error);
}

ReservedTarget::ReservedTarget(ReservedTarget&& other) noexcept
    : file_(std::move(other.file_)), is_new_(std::exchange(other.is_new_, false)) {}

FolderBeside::FolderBeside(const std::string& target) : target_(Followed(target)) {
    std::string pattern = (target_.parent_path() / kFolderPattern).string();
    if (!mkdtemp(pattern.data())) Fail(target, "created", errno);
    folder_ = pattern;
}

FolderBeside::~FolderBeside() {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
}

void FolderBeside::MoveOut(bool overwrite) {
    for (const fs::directory_entry& entry : fs::directory_iterator(folder_)) {
        const fs::path to = target_.parent_path() / entry.path().filename();
        if (overwrite && fs::is_directory(to)) fs::remove_all(to);
        if (const int error = Rename(entry.path(), to, overwrite); error != 0)
            Fail(to.string(), "created", error);
    }
}

}  // namespace Tool
