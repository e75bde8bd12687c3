#include "objects/GuardedLoad.h"

#include "objects/GuardedDevice.h"
#include "objects/LoadBudget.h"

#include <podofo/podofo.h>

#include <algorithm>
#include <exception>
#include <mutex>

namespace VellumLib {

namespace {

using namespace PoDoFo;

// About where finding the first page's objects costs less than parsing all of them.
constexpr std::int64_t kManyRows = 200;

/// The parser's settings of the whole process, as a load needs them, and as they were
/// afterwards: a cap on object numbers, and nothing on standard error.
class ParserSettings {
public:
    ParserSettings() {
        PdfParser::SetMaxObjectCount(std::min(largest_number_, LoadBudget::kObjectNumbers));
        PdfError::EnableDebug(false);
        PdfError::EnableLogging(false);
    }
    ~ParserSettings() {
        PdfParser::SetMaxObjectCount(largest_number_);
        PdfError::EnableDebug(debug_);
        PdfError::EnableLogging(logging_);
    }
    ParserSettings(const ParserSettings&) = delete;
    ParserSettings& operator=(const ParserSettings&) = delete;

private:
    static inline std::mutex mutex_;
    std::lock_guard<std::mutex> lock_{mutex_};
    long largest_number_ = PdfParser::GetMaxObjectCount();
    bool debug_ = PdfError::DebugEnabled();
    bool logging_ = PdfError::LoggingEnabled();
};

}  // namespace

void LoadGuarded(PdfMemDocument& document, const std::string& utf8_path, EPDFExtent extent) {
    if (utf8_path.empty()) RefusePdf(ePdfError_InvalidHandle, "No file is named.");
    auto* const device = new GuardedDevice(utf8_path);
    // Shared with the document's objects: the last of them closes the file.
    const PdfRefCountedInputDevice shared(device);
    if (device->Reader().HasHeader() && !device->Reader().HasEndMarker())
        RefusePdf(ePdfError_NoEOFToken, "EOF marker could not be found.");
    if (extent != EPDFExtent::Whole)
        device->Reader().NarrowToFirstPage(extent == EPDFExtent::FirstPage ? kManyRows : 0);
    try {
        const ParserSettings settings;
        document.LoadFromDevice(shared);
    } catch (const std::exception& exception) {
        RefusePdf(ePdfError_OutOfMemory, exception.what());
    }
    device->Reader().EndLoading();
}

}  // namespace VellumLib
