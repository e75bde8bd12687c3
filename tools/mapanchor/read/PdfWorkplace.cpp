#include "read/PdfWorkplace.h"

#include <Tellurion/BFileReplacement.h>

#include <cerrno>
#include <cstdlib>
#include <system_error>

namespace Tool {

namespace fs = std::filesystem;
using Tellurion::BFileReplacement;
using Tellurion::BString;

namespace {

constexpr const char* kTemporaries = "TMPDIR";

fs::path MakeFolder(const fs::path& parent) {
    std::string pattern = (parent / ".mapanchor-XXXXXX").string();
    if (!mkdtemp(pattern.data()))
        throw fs::filesystem_error("no folder to work in", parent,
                                   std::error_code(errno, std::generic_category()));
    return pattern;
}

/// Zeros when there is none.
struct stat StateOf(const std::string& file) {
    struct stat state {};
    if (stat(file.c_str(), &state) != 0) state = {};
    return state;
}

std::optional<std::string> Environment(const char* name) {
    const char* value = std::getenv(name);
    return value ? std::optional<std::string>(value) : std::nullopt;
}

}  // namespace

PdfWorkplace::PdfWorkplace(const std::string& target, Purpose purpose)
    : name_(target), target_(fs::canonical(target)), temporaries_(Environment(kTemporaries)) {
    const bool saves = purpose == Purpose::Save;
    folder_ = MakeFolder(saves ? target_.parent_path() : fs::temp_directory_path());
    file_ = (folder_ / target_.filename().replace_extension(".pdf")).string();
    std::error_code failed;
    if (!fs::copy_file(target_, file_, failed)) {
        std::error_code ignored;
        fs::remove_all(folder_, ignored);
        throw fs::filesystem_error("no copy to work on", target_, failed);
    }
    before_ = StateOf(file_);
    setenv(kTemporaries, folder_.c_str(), 1);  // where the library moves the file aside
}

PdfWorkplace::~PdfWorkplace() {
    if (temporaries_)
        setenv(kTemporaries, temporaries_->c_str(), 1);
    else
        unsetenv(kTemporaries);
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
}

bool PdfWorkplace::HasResult() const {
    const struct stat now = StateOf(file_);
    return now.st_ino != 0 && (now.st_ino != before_.st_ino || now.st_size != before_.st_size);
}

std::vector<std::string> PdfWorkplace::ReplaceTarget() {
    BFileReplacement out{BString(name_)};
    if (!out.Open(BFileReplacement::EReadOnly::Replace) || !out.Adopt(BString(file_)) || !out.Commit())
        throw fs::filesystem_error(out.GetFailure().StdStr(), target_,
                                   std::error_code(out.GetError(), std::generic_category()));
    std::vector<std::string> losses;
    for (const BString& loss : out.GetLosses())
        losses.push_back(loss.StdStr());
    return losses;
}

std::string PdfWorkplace::InWordsOfTarget(std::string text) const {
    for (std::size_t at = text.find(file_); at != std::string::npos; at = text.find(file_, at + name_.size()))
        text.replace(at, file_.size(), name_);
    return text;
}

bool PdfWorkplace::IsAboutLeftovers(const std::string& text) const {
    return text.find(folder_.string()) != std::string::npos;
}

}  // namespace Tool
