#include <Tellurion/BLogger.h>

#include <Tellurion/Printable.h>
#include <Tellurion/ThreadLog.h>

#include <cstdio>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace Tellurion {
namespace {

void WriteToStandardError(ELogSeverity, const BString& text) {
    const std::string line = text.StdStr() + "\n";
    std::fwrite(line.data(), 1, line.size(), stderr);
}

BString TextOf(const FormatArgument& argument) {
    switch (argument.GetKind()) {
        case FormatArgument::Kind::Narrow:
            return std::string(argument.Narrow());
        case FormatArgument::Kind::Wide:
            return std::wstring(argument.Wide()).c_str();
        case FormatArgument::Kind::Utf16:
            return std::u16string(argument.Utf16());
        default:
            return {};
    }
}

bool IsText(const FormatArgument& argument) {
    using Kind = FormatArgument::Kind;
    return argument.GetKind() == Kind::Narrow || argument.GetKind() == Kind::Wide ||
           argument.GetKind() == Kind::Utf16;
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

void BLogger::WriteList(ELogSeverity severity, const char* format, const FormatArgument* arguments,
                        std::size_t count) {
    std::vector<std::string> texts(count);
    std::vector<FormatArgument> printable(arguments, arguments + count);
    for (std::size_t i = 0; i < count; ++i) {
        if (!IsText(arguments[i])) continue;
        texts[i] = Printable(TextOf(arguments[i]).StdStr());
        printable[i] = FormatArgument(texts[i]);
    }
    Send(severity, BString::FormatList(format, printable.data(), count));
}

void BLogger::Write(ELogSeverity severity, const BString& text) {
    Send(severity, Printable(text.StdStr()));
}

void BLogger::Send(ELogSeverity severity, const BString& text) {
    if (ThreadLog::Receive(severity, text)) return;
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
