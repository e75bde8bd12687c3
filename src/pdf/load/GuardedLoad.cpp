#include "load/GuardedLoad.h"

#include "load/FirstPageDocument.h"
#include "load/GuardedDevice.h"
#include "load/LoadBudget.h"
#include "load/PoDoFoSettings.h"

#include <Tellurion/BFileUtilities.h>

#include <podofo/podofo.h>

#include <exception>
#include <mutex>
#include <utility>

namespace VellumLib {

namespace {

using namespace PoDoFo;
using Tellurion::BFileUtilities;

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
        static std::mutex one_load_at_a_time;
        const std::lock_guard<std::mutex> lock(one_load_at_a_time);
        document->LoadFromDevice(shared);
    }
    device->Reader().EndLoading();
    return document;
}

}  // namespace

std::unique_ptr<PdfMemDocument> LoadGuarded(const std::string& utf8_path, EPDFExtent extent,
                                            const std::string& password) {
    const PoDoFoSettings settings;
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
    const PoDoFoSettings settings;
    FileWindow file(utf8_path);
    return file.IsOpen() ? SearchFirstPage(file) : nullptr;
}

}  // namespace VellumLib
