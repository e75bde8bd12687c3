#include "batch/RowFile.h"

#include "render/JsonRenderer.h"
#include "terminal/Console.h"
#include "terminal/TargetFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <iterator>
#include <stdexcept>

namespace Tool {

namespace {

/// What every row of this tool begins with.
constexpr std::string_view kRowBegin = R"({"description":")";

constexpr const char* kForeign =
    "holds more than rows of mapanchor batch and stays as it is; --resume needs another file";

/// True when neither text contradicts the other one as far as both go.
bool Agree(std::string_view a, std::string_view b) {
    return a.starts_with(b) || b.starts_with(a);
}

/// What may follow the name in a row.
bool MayFollowName(std::string_view rest) {
    constexpr std::string_view kNext[] = {R"(,"descriptionBytes":")", R"(,"size":[)",
                                          R"(,"geoTransform":[)",     R"(,"coordinateSystem":{"wkt":)",
                                          R"(,"gcps":{"gcpList":)",   R"(,"mapanchor":{"schemaVersion":)"};
    return std::any_of(std::begin(kNext), std::end(kNext),
                       [rest](std::string_view next) { return Agree(rest, next); });
}

/// False for a text that cannot be a row, however it goes on.
bool MayBeRow(std::string_view text) {
    if (!Agree(text, kRowBegin) || text.find('\n') != std::string_view::npos) return false;
    std::size_t at = kRowBegin.size();
    while (at < text.size() && text[at] != '"')
        at += text[at] == '\\' ? std::size_t{2} : std::size_t{1};
    return at + 1 >= text.size() || MayFollowName(text.substr(at + 1));
}

/// True for the beginning of a row whose end was not written. A first one has to be long enough to tell.
bool IsTornRow(std::string_view text, bool is_first) {
    if (!MayBeRow(text) || (is_first && text.size() < kRowBegin.size())) return false;
    try {
        const Json row = Json::parse(text);
    } catch (const Json::parse_error& error) {
        return error.byte > text.size();  // nothing but its end is wrong
    }
    return NameInRow(text).has_value();
}

std::string_view WithoutLineEnd(std::string_view text) {
    if (text.ends_with('\n')) text.remove_suffix(1);
    return text;
}

}  // namespace

std::optional<std::string> NameInRow(std::string_view text) {
    const Json row = Json::parse(text, nullptr, false);
    const auto name = NameIn(row);
    if (!name || !row.contains("mapanchor") || !row["mapanchor"].is_object()) return std::nullopt;
    const Json& ours = row["mapanchor"];
    return ours.contains("schemaVersion") && ours.contains("ok") ? name : std::nullopt;
}

RowFile::RowFile(const std::string& file) : file_("<" + file + ">") {
    // Neither waits for the other end of a pipe nor changes anything yet.
    const int descriptor = open(file.c_str(), O_RDWR | O_CREAT | O_APPEND | O_NONBLOCK | O_CLOEXEC, 0666);
    if (descriptor < 0) Fail("cannot be opened: " + ReasonOf(errno));
    stream_.reset(fdopen(descriptor, "a"));
    if (!stream_) Fail("cannot be opened: " + ReasonOf(errno));
    Lock();
    const off_t whole = ReadRows();
    struct stat state {};
    if (fstat(descriptor, &state) != 0 || (state.st_size > whole && ftruncate(descriptor, whole) != 0))
        Fail("cannot be written: " + ReasonOf(errno));
}

void RowFile::Fail(const std::string& why) const {
    throw std::runtime_error(file_ + " " + why);
}

void RowFile::Lock() {
    struct stat state {};
    if (fstat(Descriptor(), &state) != 0) Fail("cannot be opened: " + ReasonOf(errno));
    if (!S_ISREG(state.st_mode)) Fail("is not a regular file; --resume needs one");
    if (flock(Descriptor(), LOCK_EX | LOCK_NB) == 0) return;
    if (errno == EWOULDBLOCK) Fail("is being written by another run; each run needs a file of its own");
    Fail("cannot be locked against other runs: " + ReasonOf(errno));
}

off_t RowFile::ReadRows() {
    constexpr std::size_t kPiece = 1 << 20;
    std::string piece(kPiece, '\0');
    std::string text;  // not looked at yet
    off_t whole = 0;
    for (off_t at = 0;;) {
        const ssize_t count = pread(Descriptor(), piece.data(), piece.size(), at);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) Fail("cannot be read and stays as it is: " + ReasonOf(errno));
        if (count == 0) break;
        at += count;
        text.append(piece, 0, static_cast<std::size_t>(count));
        const std::size_t length = AddRows(text);
        whole += static_cast<off_t>(length);
        text.erase(0, length);
        if (!MayBeRow(WithoutLineEnd(text))) Fail(kForeign);
    }
    const std::string_view torn = WithoutLineEnd(text);
    if (!text.empty() && (torn.empty() || !IsTornRow(torn, names_.empty()))) Fail(kForeign);
    return whole;
}

/// Stops at a line that is no row, which only the last one may be.
std::size_t RowFile::AddRows(std::string_view text) {
    std::size_t begin = 0;
    for (std::size_t end = 0; (end = text.find('\n', begin)) != std::string_view::npos; begin = end + 1) {
        const auto name = NameInRow(text.substr(begin, end - begin));
        if (!name) break;
        names_.insert(*name);
    }
    return begin;
}

void RowFile::Print(std::string_view row) {
    WriteOut(stream_ ? stream_.get() : stdout, row, file_);
}

}  // namespace Tool
