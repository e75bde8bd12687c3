#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace Tellurion {

/// A long text that is passed on piece by piece while it is made, so that only one piece of
/// it is in memory.
class TextPieces {
public:
    using Write = std::function<void(std::string_view piece)>;  ///< what takes a piece

    /// `write` gets some tens of KiB at a time.
    explicit TextPieces(Write write) : write_(std::move(write)) {}

    /// What comes next is appended here.
    std::string& Text() { return text_; }
    /// To be called between two parts of the text.
    void PassOn() {
        constexpr std::size_t kPiece = std::size_t{64} << 10;
        if (text_.size() >= kPiece) Finish();
    }
    /// To be called at the end of the text.
    void Finish() {
        write_(text_);
        text_.clear();
    }

private:
    Write write_;
    std::string text_;
};

}  // namespace Tellurion
