#include "batch/Message.h"

#include <unistd.h>
#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

namespace Tool {

namespace {

constexpr std::size_t kLengthSize = sizeof(std::uint64_t);
constexpr std::uint64_t kMostLength = std::uint64_t{1} << 31U;

bool WriteAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = write(descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

}  // namespace

bool SendText(int descriptor, std::string_view text) {
    const std::uint64_t length = text.size();
    std::string bytes(kLengthSize, '\0');
    std::memcpy(bytes.data(), &length, kLengthSize);
    // In one call as a rule; a long text is not copied for that.
    constexpr std::size_t kShort = 4096;
    const std::size_t with_length = text.size() <= kShort ? text.size() : 0;
    return WriteAll(descriptor, bytes.append(text, 0, with_length)) &&
           WriteAll(descriptor, text.substr(with_length));
}

std::optional<std::string> TextReceiver::Next(int descriptor) {
    while (!HasText())
        if (Receive(descriptor) == State::Ended) return std::nullopt;
    return Take();
}

std::optional<std::uint64_t> TextReceiver::Length() const {
    if (bytes_.size() < kLengthSize) return std::nullopt;
    std::uint64_t length = 0;
    std::memcpy(&length, bytes_.data(), kLengthSize);
    return length;
}

TextReceiver::State TextReceiver::Receive(int descriptor) {
    constexpr std::size_t kPiece = 65536;
    std::array<char, kPiece> piece;
    const ssize_t count = read(descriptor, piece.data(), piece.size());
    if (count < 0 && errno == EINTR) return State::Waiting;
    if (count <= 0) return State::Ended;
    bytes_.append(piece.data(), static_cast<std::size_t>(count));
    const auto length = Length();
    if (length && *length > kMostLength) return State::Ended;
    return HasText() ? State::Complete : State::Waiting;
}

bool TextReceiver::HasText() const {
    const auto length = Length();
    return length && *length <= kMostLength && bytes_.size() >= kLengthSize + *length;
}

std::string TextReceiver::Take() {
    const std::size_t end = kLengthSize + static_cast<std::size_t>(Length().value_or(0));
    std::string rest = bytes_.substr(end);
    bytes_.resize(end);
    std::string text = std::move(bytes_.erase(0, kLengthSize));
    bytes_ = std::move(rest);
    return text;
}

}  // namespace Tool
