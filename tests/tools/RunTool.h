#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "TempFolder.h"

/// The result of one run of the command line.
struct ToolRun {
    int status = -1;  ///< the exit status, 128 and the signal's number for a death by signal
    std::string out;
    std::string err;

    /// The lines of stdout, each one JSON object that the published schema allows.
    std::vector<nlohmann::json> Objects() const;
    /// The first object's member that has the library's terms.
    nlohmann::json Ours() const { return Objects().at(0)["mapanchor"]; }
};

struct ToolSetting {
    std::string in = {};                                                ///< standard input
    std::vector<std::pair<std::string, std::string>> environment = {};  ///< added to the caller's
    std::string out_path = {};                                          ///< stdout goes there instead
    std::string program = MAPANCHOR_TOOL;
};

/// Runs the mapanchor that was built with these tests, or another program.
ToolRun RunTool(const std::vector<std::string>& words, const ToolSetting& setting = {});

/// The words of a line: a leading % stands for the folder, a ~ for a blank within a word.
std::vector<std::string> Words(const std::string& line, const std::string& folder = {});

/// A folder in which the tool runs.
class ToolFolder : public TempFolder {
public:
    /// Runs the words. `members` is JSON without the outer braces: what the first object on
    /// stdout or its "mapanchor" has among more. Null means absent, and every % stands for
    /// the folder. The texts are parts of stdout or stderr.
    ToolRun ExpectRun(const std::string& words, int status, const std::string& members = {},
                      const std::vector<std::string>& texts = {}) const;
    /// The file's content; an empty one stands for a file that does not exist.
    void ExpectFile(const std::string& name, const std::string& content) const;
};

/// The text of a prj file, by the code of its system.
std::string PrjOf(const std::string& code);
