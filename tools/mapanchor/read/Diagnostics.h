#pragma once

#include "read/Failure.h"

#include <string>
#include <vector>

namespace Tool {

/// A remark about one input.
struct Diagnostic {
    bool is_error = false;
    std::string text;
    std::string id = {};     ///< stable, for programs
    bool is_note = false;    ///< does not put the result in doubt
    std::string file = {};   ///< where it was seen; may be empty
    std::string place = {};  ///< within the file; may be empty

    const char* Severity() const { return is_error ? "error" : is_note ? "note" : "warning"; }
};

using Diagnostics = std::vector<Diagnostic>;

/// True when one of them is more than a note.
bool AreDoubtful(const Diagnostics& diagnostics);

/// Takes what the library logs while it lives, in place of stderr.
class LogCollector {
public:
    LogCollector();
    ~LogCollector();
    LogCollector(const LogCollector&) = delete;
    LogCollector& operator=(const LogCollector&) = delete;

    /// The lines since the last call, as errors where there is a failure, which may be null;
    /// those that only repeat its text are left out.
    void MoveTo(Diagnostics& diagnostics, const Failure* failure);

private:
    std::vector<std::string> lines_;
};

}  // namespace Tool
