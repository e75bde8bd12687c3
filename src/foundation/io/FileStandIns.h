#pragma once

#include <Tellurion/Export.h>

#include <string>
#include <utility>
#include <vector>

struct stat;

namespace Tellurion {

/// Contents of files that only another library can open, such as one within an archive. While
/// it lives, whoever opens such a name for reading in its thread gets the content. Readers of
/// plain files so read it without knowing.
class TELLURION_EXPORT FileStandIns {
public:
    FileStandIns();
    ~FileStandIns();
    FileStandIns(const FileStandIns&) = delete;
    FileStandIns& operator=(const FileStandIns&) = delete;

    void Add(const std::string& name, std::string content);

    /// A descriptor of the content; negative where nothing replaces that name, and with
    /// errno set where the system has no room for it.
    static int Open(const char* name, struct stat& status);
    static bool Has(const char* name);

private:
    const std::string* Find(const char* name) const;

    std::vector<std::pair<std::string, std::string>> contents_;
    FileStandIns* outer_;
};

}  // namespace Tellurion
