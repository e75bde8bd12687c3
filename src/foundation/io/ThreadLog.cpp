#include <Tellurion/ThreadLog.h>

#include <utility>

namespace Tellurion {
namespace {

thread_local ThreadLog* receiver = nullptr;

}  // namespace

ThreadLog::ThreadLog() : outer_(std::exchange(receiver, this)) {}

ThreadLog::~ThreadLog() {
    receiver = outer_;
}

std::vector<BString> ThreadLog::Take() {
    return std::exchange(lines_, {});
}

bool ThreadLog::Receive(ELogSeverity, const BString& text) {
    if (!receiver) return false;
    receiver->lines_.push_back(text);
    return true;
}

}  // namespace Tellurion
