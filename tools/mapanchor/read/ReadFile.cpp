#include "read/ReadFile.h"

namespace Tool {

ReadResult ReadFile(const std::string& name, const ReadOptions& options, LogCollector& log) {
    ReadResult result =
        ResultOf(MapAnchor::BReading::Of(Tellurion::BString(name), options.ForReading()), name);
    result.page_number = options.pdf_page;
    log.MoveTo(result.diagnostics, result.failure ? &*result.failure : nullptr);
    return result;
}

}  // namespace Tool
