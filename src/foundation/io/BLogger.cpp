#include <Tellurion/BLogger.h>

#include <cstdio>
#include <mutex>
#include <utility>

namespace Tellurion {
namespace {

void WriteToStandardError(ELogSeverity, const BString& text) {
    const std::string line = text.StdStr() + "\n";
    std::fwrite(line.data(), 1, line.size(), stderr);
}

}  // namespace

struct BLogger::State {
    std::mutex mutex;
    std::shared_ptr<const Sink> sink = std::make_shared<const Sink>(WriteToStandardError);
    bool is_default = true;
};

BLogger::BLogger() : state_(std::make_unique<State>()) {}
BLogger::~BLogger() = default;

BLogger* BLogger::Instance() {
    // Never destroyed: a host may log from its own static destructors.
    static BLogger* const instance = new BLogger;
    return instance;
}

void BLogger::Write(ELogSeverity severity, const BString& text) {
    std::shared_ptr<const Sink> sink;
    {
        const std::lock_guard lock(state_->mutex);
        sink = state_->sink;
    }
    (*sink)(severity, text);
}

BLogger::Sink BLogger::SetSink(Sink sink) {
    const bool is_default = !sink;
    auto next = std::make_shared<const Sink>(is_default ? Sink(WriteToStandardError) : std::move(sink));
    const std::lock_guard lock(state_->mutex);
    std::swap(state_->sink, next);
    return std::exchange(state_->is_default, is_default) ? Sink() : *next;
}

}  // namespace Tellurion
