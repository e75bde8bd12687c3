#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Tool {

/// Texts through a pipe, each behind its length.

/// False when the other end is gone.
bool SendText(int descriptor, std::string_view text);

/// Puts texts together from pieces that come as they like.
class TextReceiver {
public:
    enum class State { Waiting, Complete, Ended };

    /// Reads what the pipe holds now. Ended also for a length that nobody sends.
    State Receive(int descriptor);
    /// The next text is complete.
    bool HasText() const;
    /// That text.
    std::string Take();
    /// Waits for the next text; empty when the other end is gone.
    std::optional<std::string> Next(int descriptor);

private:
    std::optional<std::uint64_t> Length() const;

    std::string bytes_;
};

}  // namespace Tool
