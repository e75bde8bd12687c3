#pragma once

#include <Tellurion/BCoordSys.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

/// The notations that the library writes, each written and read back.
namespace sweep {

/// What came of one system in one notation.
struct Answer {
    std::unique_ptr<Tellurion::BCoordSys> back;  ///< as the library reads it; null when not asked
    std::string text;                            ///< as another reader reads it, for PROJ
    std::string code;                            ///< of that other reader
    bool refused = false;                        ///< an exception, no text, or a log line
    std::string reason;
};

struct Notation {
    const char* name;
    Answer (*pass)(const Tellurion::BCoordSys& system, const std::filesystem::path& folder);
    bool holds_heights = true;  ///< without a place for them "convert" warns of the loss
    bool in_sample = false;     ///< quick enough for the sample that runs with the tests
};

const std::vector<Notation>& Notations();

/// Has the log count for the calling thread, in place of stderr.
void CollectLog();

}  // namespace sweep
