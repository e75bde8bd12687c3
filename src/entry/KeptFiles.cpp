#include "KeptFiles.h"

#include <Tellurion/BFileAccessException.h>
#include <Tellurion/BFileReplacement.h>

#include <unistd.h>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace MapAnchor {

namespace fs = std::filesystem;
using Tellurion::BFileAccessException;
using Tellurion::BFileReplacement;
using Tellurion::BString;

namespace {

[[noreturn]] void ThrowNoCopy(const std::string& file, const std::string& reason) {
    throw BFileAccessException("BSaving::Of",
                               BString("File <" + file + "> cannot be copied before it is saved: " + reason +
                                       ". A save that need not be exact makes no copy."));
}

/// The name of an empty file of the owner's beside the file.
std::string MakeCopyName(const std::string& file) {
    std::string name = (fs::path(file).parent_path() / ".mapanchor-XXXXXX").string();
    const int descriptor = mkstemp(name.data());
    if (descriptor < 0) ThrowNoCopy(file, std::generic_category().message(errno));
    close(descriptor);
    return name;
}

}  // namespace

KeptFiles::~KeptFiles() {
    std::error_code ignored;
    for (const Kept& kept : kept_)
        if (!kept.copy.empty()) fs::remove(kept.copy, ignored);
}

void KeptFiles::Keep(const std::vector<BString>& files) {
    for (const BString& file : files) {
        const std::string name = file.StdStr();
        std::error_code error;
        if (!fs::is_regular_file(name, error)) {
            // A device cannot be given back; a name that leads nowhere is removed again.
            if (!fs::exists(name, error)) kept_.push_back({file, {}});
            continue;
        }
        kept_.push_back({file, MakeCopyName(name)});
        if (!fs::copy_file(name, kept_.back().copy, fs::copy_options::overwrite_existing, error))
            ThrowNoCopy(name, error.message());
    }
}

std::string KeptFiles::Restore() {
    for (Kept& kept : kept_) {
        std::error_code error;
        if (kept.copy.empty()) {
            fs::remove(kept.file.StdStr(), error);
            if (error) return kept.file.StdStr() + " cannot be removed: " + error.message();
            continue;
        }
        BFileReplacement out(kept.file);
        if (!out.Open(BFileReplacement::EReadOnly::Replace) || !out.Adopt(BString(kept.copy)) ||
            !out.Commit())
            return kept.file.StdStr() + " is not what it was: " + out.GetFailure().StdStr();
    }
    return {};
}

}  // namespace MapAnchor
