#pragma once

#include <Tellurion/Export.h>

#include <set>
#include <string>

namespace Tellurion {

/// While one lives, no BFileReplacement of this thread replaces a file that this thread did
/// not make meanwhile. The latest one of a thread counts; they end in the reverse order.
class TELLURION_EXPORT NewFilesOnly {
public:
    NewFilesOnly();
    ~NewFilesOnly();
    NewFilesOnly(const NewFilesOnly&) = delete;
    NewFilesOnly& operator=(const NewFilesOnly&) = delete;

    /// Whether that path may not be replaced now.
    static bool Protects(const std::string& path);
    static void Add(const std::string& made);

private:
    std::set<std::string> made_;
    NewFilesOnly* outer_;
};

}  // namespace Tellurion
