#pragma once

#include <chrono>
#include <cstddef>
#include <optional>

namespace Tool {

/// Tells on stderr how far a run is: one line that is written over on a terminal, a
/// line now and then elsewhere.
class Progress {
public:
    Progress(bool wanted, bool is_terminal) : wanted_(wanted), is_terminal_(is_terminal) {}
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void Count(bool failed);
    /// `left` is empty while not all inputs are known.
    void Tell(std::optional<std::size_t> left, bool at_end = false);

private:
    using Clock = std::chrono::steady_clock;

    bool wanted_;
    bool is_terminal_;
    bool is_line_open_ = false;
    std::size_t done_ = 0;
    std::size_t failed_ = 0;
    Clock::time_point begin_ = Clock::now();
    Clock::time_point last_ = begin_;
};

}  // namespace Tool
