#include <Tellurion/FileStandIns.h>

#include <Tellurion/FileBytes.h>

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Tellurion {
namespace {

thread_local FileStandIns* current = nullptr;

}  // namespace

FileStandIns::FileStandIns() : outer_(std::exchange(current, this)) {}

FileStandIns::~FileStandIns() {
    current = outer_;
}

void FileStandIns::Add(const std::string& name, std::string content) {
    contents_.emplace_back(name, std::move(content));
}

const std::string* FileStandIns::Find(const char* name) const {
    for (const auto& [known, content] : contents_)
        if (known == name) return &content;
    return outer_ ? outer_->Find(name) : nullptr;
}

bool FileStandIns::Has(const char* name) {
    return current && current->Find(name);
}

int FileStandIns::Open(const char* name, struct stat& status) {
    const std::string* const content = current ? current->Find(name) : nullptr;
    if (!content) return -1;
    const int descriptor = ::memfd_create("stand-in", MFD_CLOEXEC);
    if (descriptor < 0) return -1;
    if (FileBytes::WriteAll(descriptor, *content) == 0 && ::lseek(descriptor, 0, SEEK_SET) == 0 &&
        ::fstat(descriptor, &status) == 0)
        return descriptor;
    ::close(descriptor);
    return -1;
}

}  // namespace Tellurion
