#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

/// What one run of the command line came to.
struct ToolRun {
    int status = -1;  ///< the exit status, 128 and the signal's number for a death by signal
    std::string out;
    std::string err;

    /// The lines of stdout, each one JSON object that the published schema allows.
    std::vector<nlohmann::json> Objects() const;
};

struct ToolSetting {
    std::string in = {};                                                ///< standard input
    std::vector<std::pair<std::string, std::string>> environment = {};  ///< added to the caller's
    std::string out_path = {};                                          ///< stdout goes there instead
    std::string program = MAPANCHOR_TOOL;
};

/// Runs the mapanchor that was built with these tests, or another program.
ToolRun RunTool(const std::vector<std::string>& words, const ToolSetting& setting = {});
