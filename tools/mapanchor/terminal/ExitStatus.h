#pragma once

namespace Tool {

/// What the program answers to its caller.
enum class ExitStatus : int {
    Done = 0,
    Error = 2,        ///< nothing usable
    Warnings = 3,     ///< done with warnings, or some of many inputs failed
    NoReference = 4,  ///< read, but the file carries no georeference
    Refused = 5,      ///< unsupported, encrypted, or a driver is missing
    Usage = 64,
    ReaderLeft = 141,  ///< nobody reads the output any more; as a shell counts SIGPIPE
};

}  // namespace Tool
