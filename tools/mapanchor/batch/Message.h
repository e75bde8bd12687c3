#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Tool {

/// Texts through a pipe, each behind its length.

/// False when the other end is gone.
bool SendText(int descriptor, std::string_view text);

/// Waits for one text; empty when the other end is gone.
std::optional<std::string> ReceiveText(int descriptor);

/// Puts one text together from pieces that come as they like.
class TextReceiver {
public:
    enum class State { Waiting, Complete, Ended };

    /// Takes what the pipe holds now. Ended also for a length that nobody sends.
    State Receive(int descriptor);
    /// The complete text; the next one can be received then.
    std::string Take();

private:
    std::optional<std::uint64_t> Length() const;

    std::string bytes_;
};

}  // namespace Tool
