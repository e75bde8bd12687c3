#pragma once

#include <Tellurion/BString.h>
#include <Tellurion/ELogSeverity.h>
#include <Tellurion/Export.h>

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

    /// Writes one entry by the rules of BString::Format; the text may hold inner
    /// "\n", the sink adds the line end.
    template <class... Args>
    void WriteLine(ELogSeverity severity, const char* format, const Args&... arguments) {
        Write(severity, BString::Format(format, arguments...));
    }
    void Write(ELogSeverity severity, const BString& text);  ///< the same of a text that is ready

    /// Installs a sink and returns the one before; an empty one brings the default back.
    Sink SetSink(Sink sink);

private:
    BLogger();
    ~BLogger();
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace Tellurion
