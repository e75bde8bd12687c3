#pragma once

#include "batch/Message.h"

#include <sys/types.h>
#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace Tool {

/// Answers one file's name; runs in the worker process.
using Answer = std::function<std::string(const std::string& name)>;

struct Limits {
    double seconds = 0.0;      ///< for a file
    std::uint64_t memory = 0;  ///< bytes for a file, beyond what the process has before
};

/// A process that answers names one at a time, in their order. What kills it, or holds it up,
/// is not felt here.
class Worker {
public:
    /// Starts the process, which closes `strangers`, such as the pipes of its fellows.
    Worker(const Answer& answer, const Limits& limits, const std::vector<int>& strangers);
    ~Worker();
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    /// False when the process is no longer there.
    bool Give(const std::string& name) { return SendText(names_, name); }
    TextReceiver::State Receive() { return receiver_.Receive(answers_); }
    bool HasAnswer() const { return receiver_.HasText(); }
    std::string TakeAnswer() { return receiver_.Take(); }
    /// Kills the process, where it still runs; its end in words, such as "signal 11
    /// (Segmentation fault)".
    std::string End();
    /// The end was that of a process that got no more memory.
    bool EndedForMemory() const { return ended_for_memory_; }

    int AnswerDescriptor() const { return answers_; }
    std::vector<int> Descriptors() const { return {names_, answers_}; }

private:
    pid_t process_ = -1;
    int names_ = -1;
    int answers_ = -1;
    bool ended_for_memory_ = false;
    TextReceiver receiver_;
};

}  // namespace Tool
