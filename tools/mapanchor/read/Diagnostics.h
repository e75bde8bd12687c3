#pragma once

#include <string>
#include <vector>

/// A remark about one input.
struct Diagnostic {
    bool is_error = false;
    std::string text;
    std::string id = {};  ///< stable, for programs; most have none

    const char* Severity() const { return is_error ? "error" : "warning"; }
};

using Diagnostics = std::vector<Diagnostic>;

/// Takes what the library logs while it lives, in place of stderr.
class LogCollector {
public:
    LogCollector();
    ~LogCollector();
    LogCollector(const LogCollector&) = delete;
    LogCollector& operator=(const LogCollector&) = delete;

    /// The lines since the last call, as remarks of that severity.
    void MoveTo(Diagnostics& diagnostics, bool as_errors);

private:
    std::vector<std::string> lines_;
};
