#include "load/GuardedLoad.h"

#include "load/FirstPageDocument.h"
#include "load/GuardedDevice.h"
#include "load/LoadBudget.h"

#include <Tellurion/BFileUtilities.h>

#include <podofo/podofo.h>

#include <algorithm>
#include <exception>
#include <mutex>
#include <utility>

namespace VellumLib {

namespace {

using namespace PoDoFo;
using Tellurion::BFileUtilities;

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

[[noreturn]] void RefuseUnopened(const std::string& path) {
    const Tellurion::BString name(path);
    if (BFileUtilities::Exists(name) && !BFileUtilities::IsRegularFile(name))
        RefusePdf(ePdfError_NoPdfFile, path + " is not a regular file");
    RefusePdf(ePdfError_FileNotFound, path);
}

std::unique_ptr<PdfMemDocument> LoadWhole(std::unique_ptr<FileWindow> file) {
    auto* const device = new GuardedDevice(std::move(file));
    // Shared with the document's objects: the last of them closes the file.
    const PdfRefCountedInputDevice shared(device);
    if (device->Reader().HasHeader() && !device->Reader().HasEndMarker())
        RefusePdf(ePdfError_NoEOFToken, "EOF marker could not be found.");
    auto document = std::make_unique<PdfMemDocument>(true);
    {
        const ParserSettings settings;
        document->LoadFromDevice(shared);
    }
    device->Reader().EndLoading();
    return document;
}

}  // namespace

std::unique_ptr<PdfMemDocument> LoadGuarded(const std::string& utf8_path, EPDFExtent extent,
                                            const std::string& password) {
    if (utf8_path.empty()) RefusePdf(ePdfError_InvalidHandle, "No file is named.");
    auto file = std::make_unique<FileWindow>(utf8_path);
    if (!file->IsOpen()) RefuseUnopened(utf8_path);
    try {
        FirstPageWishes wishes;
        if (extent == EPDFExtent::FirstPageAsShown) wishes = {.inherited = true, .password = password};
        if (extent != EPDFExtent::Whole)
            if (auto document = LoadFirstPage(*file, wishes)) return document;
        return LoadWhole(std::move(file));
    } catch (const std::exception& exception) {
        RefusePdf(ePdfError_OutOfMemory, exception.what());
    }
}

std::unique_ptr<PdfMemDocument> LoadBySearch(const std::string& utf8_path) {
    FileWindow file(utf8_path);
    return file.IsOpen() ? SearchFirstPage(file) : nullptr;
}

}  // namespace VellumLib
