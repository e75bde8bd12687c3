#include <Tellurion/NewFilesOnly.h>

namespace Tellurion {
namespace {

thread_local NewFilesOnly* latest = nullptr;

}  // namespace

NewFilesOnly::NewFilesOnly() : outer_(latest) {
    latest = this;
}

NewFilesOnly::~NewFilesOnly() {
    latest = outer_;
}

bool NewFilesOnly::Protects(const std::string& path) {
    return latest && !latest->made_.contains(path);
}

void NewFilesOnly::Add(const std::string& made) {
    if (latest) latest->made_.insert(made);
}

}  // namespace Tellurion
