#include "load/FileWindow.h"

#include <algorithm>
#include <span>
#include <utility>

namespace VellumLib {

namespace {

// Parsers look back a little before the place they jump to, and may go on from there or
// jump again.
constexpr std::int64_t kLookBack = std::int64_t{2} * 1024;
constexpr std::int64_t kJump = std::int64_t{8} * 1024;

}  // namespace

FileWindow::FileWindow(const std::string& path) : file_(Tellurion::BString(path)) {}

int FileWindow::Fetch(std::int64_t position) {
    if (position < 0 || position >= Size()) return -1;
    const std::int64_t end = current_->End();
    std::swap(current_, other_);
    if (current_->Holds(position)) return current_->At(position);
    const auto full = static_cast<std::int64_t>(current_->bytes.size());
    const bool onward = end > 0 && position >= end && position < end + full;
    const std::int64_t width = onward ? full : kJump;
    current_->start =
        position == end ? end : std::max<std::int64_t>(0, std::min(position - kLookBack, Size() - width));
    current_->filled = 0;
    const auto wanted = static_cast<std::size_t>(std::min(width, Size() - current_->start));
    current_->filled = static_cast<std::int64_t>(
        file_.ReadAt(static_cast<std::uint64_t>(current_->start), std::span(current_->bytes).first(wanted)));
    return current_->Holds(position) ? current_->At(position) : -1;
}

std::size_t FileWindow::Read(std::int64_t position, char* target, std::size_t count) {
    std::size_t done = 0;
    while (done < count && At(position) >= 0) {
        const std::size_t piece =
            std::min(count - done, static_cast<std::size_t>(current_->End() - position));
        std::copy_n(current_->bytes.data() + (position - current_->start), piece, target + done);
        done += piece;
        position += static_cast<std::int64_t>(piece);
    }
    return done;
}

}  // namespace VellumLib
