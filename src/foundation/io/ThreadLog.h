#pragma once

#include <Tellurion/BString.h>
#include <Tellurion/ELogSeverity.h>
#include <Tellurion/Export.h>

#include <vector>

namespace Tellurion {

/// Receives what this thread logs while it lives, in place of the process's sink. The latest
/// one of a thread receives; they end in the reverse order.
class TELLURION_EXPORT ThreadLog {
public:
    ThreadLog();
    ~ThreadLog();
    ThreadLog(const ThreadLog&) = delete;
    ThreadLog& operator=(const ThreadLog&) = delete;

    /// The entries since the last call.
    std::vector<BString> Take();

    /// Hands an entry to this thread's receiver; false when there is none.
    static bool Receive(ELogSeverity severity, const BString& text);

private:
    std::vector<BString> lines_;
    ThreadLog* outer_;
};

}  // namespace Tellurion
