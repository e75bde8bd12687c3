#pragma once

#include "RunTool.h"
#include "TempFolder.h"

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

/// One fault that a program meets.
struct Fault {
    const char* call;
    const char* kind;
    long number = 1;
};

struct FaultRun {
    ToolRun run;
    bool struck = false;  ///< false: the program ended before its number came

    bool WasKilled() const { return run.status == 128 + 9; }
    bool HasCrashed() const { return run.status > 128 && !WasKilled(); }
    bool SaysSaved() const { return run.status == 0; }
};

/// Runs a program that meets the fault in its work on files below `under`.
inline FaultRun RunWithFault(const std::string& program, const std::vector<std::string>& words,
                             const Fault& fault, const std::string& under, const std::string& temporaries) {
    const TempFolder notes;
    // A list of libraries to load has no way to write a blank.
    const std::string shim = notes / "shim.so";
    std::filesystem::create_symlink(FAULT_SHIM, shim);
    ToolSetting setting;
    setting.program = program;
    setting.environment = {{"LD_PRELOAD", shim},       {"FAULT_CALL", fault.call},
                           {"FAULT_KIND", fault.kind}, {"FAULT_NUMBER", std::to_string(fault.number)},
                           {"FAULT_UNDER", under},     {"FAULT_LOG", notes / "struck"},
                           {"TMPDIR", temporaries}};
    FaultRun result;
    result.run = RunTool(words, setting);
    result.struck = std::filesystem::exists(notes / "struck");
    return result;
}
