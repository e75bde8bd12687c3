#pragma once

#include <Tellurion/BString.h>
#include <Tellurion/ELogSeverity.h>
#include <Tellurion/Export.h>

#include <cstddef>
#include <functional>
#include <memory>

namespace Tellurion {

/// The library's log: one sink for the whole process, which a host may replace.
/// The default sink writes a line to stderr. Safe to use from several threads; a
/// sink is called by the thread that logs and must not throw.
class TELLURION_EXPORT BLogger {
public:
    using Sink = std::function<void(ELogSeverity severity, const BString& text)>;  ///< see above

    static BLogger* Instance();  ///< never null; not the caller's

    /// Writes one entry by the rules of BString::Format; the format may hold inner "\n",
    /// the sink adds the line end. Arguments come from files and their names: they go
    /// through Printable(), so that none of them begins a line of its own.
    template <class... Args>
    void WriteLine(ELogSeverity severity, const char* format, const Args&... arguments) {
        const FormatArgument list[sizeof...(Args) + 1] = {FormatArgument(arguments)..., FormatArgument(0)};
        WriteList(severity, format, list, sizeof...(Args));
    }
    /// The same of a text that is ready, which is one line: all of it goes through Printable().
    void Write(ELogSeverity severity, const BString& text);

    /// Installs a sink and returns the one before; an empty one brings the default back.
    Sink SetSink(Sink sink);

private:
    BLogger();
    ~BLogger();
    void WriteList(ELogSeverity severity, const char* format, const FormatArgument* arguments,
                   std::size_t count);
    void Send(ELogSeverity severity, const BString& text);
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace Tellurion
