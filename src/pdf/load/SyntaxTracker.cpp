#include "load/SyntaxTracker.h"

#include <algorithm>
#include <utility>

namespace VellumLib {

namespace {

constexpr std::size_t kLongestKept = std::size_t{1024} * 1024;
// A long word costs as much to copy as several short ones.
constexpr std::uint32_t kWordPiece = 32;
// Prices as measured, in bytes: an array of such values at its largest, while it grows and is copied.
// A reference costs less than the two numbers before its word.
constexpr std::uint64_t kNumber = 176;
constexpr std::uint64_t kName = 368;
constexpr std::uint64_t kContainer = 464;
constexpr std::uint64_t kString = 496;
// Two of the containers around a value are copied while the next one grows.
constexpr std::uint64_t kCopy = 56;

enum class Kind : std::uint8_t { Regular, White, Delimiter };

constexpr std::array<Kind, 256> MakeKinds() {
    std::array<Kind, 256> kinds{};
    for (const char c : {'\0', '\t', '\n', '\f', '\r', ' '})
        kinds[static_cast<unsigned char>(c)] = Kind::White;
    for (const char c : {'(', ')', '<', '>', '[', ']', '{', '}', '/', '%'})
        kinds[static_cast<unsigned char>(c)] = Kind::Delimiter;
    return kinds;
}
constexpr std::array<Kind, 256> kKinds = MakeKinds();

}  // namespace

void SyntaxTracker::Restart() {
    state_ = State::Between;
    value_ended_ = cut_ = dictionary_closed_ = false;
    depth_ = balance_ = 0;
    values_ = copy_cost_ = memory_ = 0;
    in_name_ = false;
    ForgetWords();
}

void SyntaxTracker::ForgetWords() {
    for (ShortWord& word : words_)
        word.size = 0;
}

std::string_view SyntaxTracker::Word(std::size_t back) const {
    const ShortWord& word = words_[(newest_ + words_.size() - back) % words_.size()];
    return {word.text.data(), word.size};
}

bool SyntaxTracker::TakeDictionaryClosed() {
    return std::exchange(dictionary_closed_, false);
}

void SyntaxTracker::Consume(unsigned char byte) {
    if (keep_ && depth_ > 0) Keep(byte);
    switch (state_) {
        case State::Comment:
            if (byte == '\r' || byte == '\n') state_ = State::Between;
            return;
        case State::String:
        case State::Escape:
            return TakeString(byte);
        case State::Hex:
            if (byte != '>') return;
            state_ = State::Between;
            return EndValue();
        case State::Less:
            if (byte == '<') return OpenContainer(true);
            CountValue(kString);
            state_ = State::Hex;
            if (byte == '>') {
                state_ = State::Between;
                EndValue();
            }
            return;
        case State::Greater:
            if (byte == '>') return CloseContainer(true);
            [[fallthrough]];
        case State::Between:
        case State::Word:
            return TakeToken(byte);
    }
}

void SyntaxTracker::TakeToken(unsigned char byte) {
    if (kKinds[byte] == Kind::Regular) return state_ == State::Word ? ContinueWord(byte) : BeginWord(byte);
    if (state_ == State::Word) EndValue();
    state_ = State::Between;
    in_name_ = byte == '/';
    switch (byte) {
        case '%':
            state_ = State::Comment;
            return;
        case '(':
            state_ = State::String;
            balance_ = 0;
            return CountValue(kString);
        case '/':  // a value, even with nothing behind it
            return CountValue(kName);
        case '<':
            state_ = State::Less;
            return;
        case '>':
            state_ = State::Greater;
            return;
        case '[':
            return OpenContainer(false);
        case ']':
            return CloseContainer(false);
        default:
            return;
    }
}

void SyntaxTracker::TakeString(unsigned char byte) {
    if (++run_ % kWordPiece == 0) copy_cost_ += static_cast<std::uint64_t>(depth_);
    if (state_ == State::Escape) {
        state_ = State::String;
    } else if (byte == '\\') {
        state_ = State::Escape;
    } else if (byte == '(') {
        ++balance_;
    } else if (byte == ')' && balance_-- == 0) {
        state_ = State::Between;
        EndValue();
    }
}

void SyntaxTracker::BeginWord(unsigned char byte) {
    state_ = State::Word;
    if (!std::exchange(in_name_, false)) CountValue(byte == 'R' ? 0 : kNumber);
    if (depth_ > 0) return;
    newest_ = (newest_ + 1) % words_.size();
    words_[newest_].text[0] = static_cast<char>(byte);
    words_[newest_].size = 1;
}

void SyntaxTracker::ContinueWord(unsigned char byte) {
    if (++run_ % kWordPiece == 0) copy_cost_ += static_cast<std::uint64_t>(depth_);
    ShortWord& word = words_[newest_];
    if (depth_ > 0 || word.size == word.text.size()) return;
    word.text[word.size++] = static_cast<char>(byte);
}

void SyntaxTracker::CountValue(std::uint64_t memory) {
    ++values_;
    memory_ += memory + kCopy * static_cast<std::uint64_t>(std::clamp(depth_ - 1, 0, 2));
    copy_cost_ += static_cast<std::uint64_t>(depth_) + 1;
    run_ = 0;
}

void SyntaxTracker::OpenContainer(bool dictionary) {
    state_ = State::Between;
    CountValue(kContainer);
    if (depth_++ > 0) return;
    outermost_is_dictionary_ = dictionary;
    cut_ = false;
    if (!keep_) return;
    text_.assign(dictionary ? "<<" : "[");
}

void SyntaxTracker::CloseContainer(bool dictionary) {
    state_ = State::Between;
    if (depth_ == 0 || --depth_ > 0) return;
    dictionary_closed_ = dictionary && outermost_is_dictionary_;
    EndValue();
}

void SyntaxTracker::Keep(unsigned char byte) {
    if (text_.size() >= kLongestKept)
        cut_ = true;
    else
        text_.push_back(static_cast<char>(byte));
}

}  // namespace VellumLib
