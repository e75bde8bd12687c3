#include "batch/NameSource.h"

#include "read/InputNames.h"

#include <poll.h>
#include <unistd.h>
#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>

namespace Tool {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kMostAhead = 100'000;

bool IsReadable(int descriptor) {
    pollfd wait{descriptor, POLLIN, 0};
    return poll(&wait, 1, 0) > 0;
}

bool IsFolder(const fs::path& path) {
    std::error_code error;
    return fs::is_directory(path, error);
}

/// A link to a folder may lead back up, so it is not followed.
bool IsLink(const fs::path& path) {
    std::error_code error;
    return fs::is_symlink(path, error);
}

}  // namespace

NameSource::NameSource(Settings settings) : settings_(std::move(settings)) {}

int NameSource::Descriptor() const {
    const bool reads = root_ < settings_.roots.size() && settings_.roots[root_] == "-" && folders_.empty();
    return reads && pending_.size() < kMostAhead ? STDIN_FILENO : -1;
}

std::optional<std::string> NameSource::Next() {
    if (pending_.empty()) return std::nullopt;
    std::string name = std::move(pending_.front());
    pending_.pop_front();
    return name;
}

void NameSource::ReadAhead() {
    constexpr int kSteps = 256;
    for (int step = 0; step < kSteps && pending_.size() < kMostAhead; ++step) {
        if (!folders_.empty()) {
            WalkOn();
        } else if (Descriptor() >= 0) {
            if (!IsReadable(Descriptor())) return;
            ReadSome();
        } else if (root_ < settings_.roots.size()) {
            BeginRoot();
        } else {
            return;
        }
    }
}

void NameSource::Add(const std::string& name) {
    if (!name.empty() && settings_.is_wanted(name)) pending_.push_back(name);
}

void NameSource::BeginRoot() {
    const std::string& root = settings_.roots[root_++];
    if (IsFolder(root))
        folders_.push_back(root);
    else
        Add(root);
}

/// The files of a folder in the order of their names, then the folders in it. One that
/// cannot be listed is an input itself, so that somebody hears of it.
void NameSource::WalkOn() {
    const std::string folder = std::move(folders_.back());
    folders_.pop_back();
    std::vector<std::string> files;
    std::vector<std::string> folders;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        if (!IsFolder(entry->path()))
            files.push_back(entry->path().string());
        else if (!IsLink(entry->path()))
            folders.push_back(entry->path().string());
    }
    if (error) Add(folder);
    std::sort(files.begin(), files.end());
    std::sort(folders.rbegin(), folders.rend());
    if (settings_.keep_inputs) settings_.keep_inputs(files);
    for (const std::string& file : files)
        if (settings_.is_wanted_in_folder(file)) Add(file);
    folders_.insert(folders_.end(), folders.begin(), folders.end());
}

void NameSource::ReadSome() {
    constexpr std::size_t kPiece = 65536;
    std::array<char, kPiece> piece;
    const ssize_t count = read(STDIN_FILENO, piece.data(), piece.size());
    if (count < 0 && (errno == EINTR || errno == EAGAIN)) return;
    if (count < 0) return Fail(UnreadableNames(errno));
    if (count > 0) {
        const std::size_t searched = unsplit_.size();
        unsplit_.append(piece.data(), static_cast<std::size_t>(count));
        return SplitNames(searched);
    }
    Add(unsplit_);  // the last one may have no end mark
    unsplit_.clear();
    ++root_;
}

void NameSource::Fail(const std::string& why) {
    fault_ = why;
    root_ = settings_.roots.size();
}

/// No mark is in the first `searched` bytes.
void NameSource::SplitNames(std::size_t searched) {
    const char mark = settings_.nul_separated ? '\0' : '\n';
    std::size_t begin = 0;
    for (std::size_t end = 0; (end = unsplit_.find(mark, std::max(begin, searched))) != std::string::npos;
         begin = end + 1) {
        std::string name = unsplit_.substr(begin, end - begin);
        if (!settings_.nul_separated && name.ends_with('\r')) name.pop_back();
        Add(name);
    }
    unsplit_.erase(0, begin);
    if (unsplit_.size() > kMaxNameLength) Fail(TooLongName());
}

}  // namespace Tool
