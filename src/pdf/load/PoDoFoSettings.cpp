#include "load/PoDoFoSettings.h"

#include "load/LoadBudget.h"

#include <podofo/podofo.h>

#include <algorithm>
#include <mutex>

namespace VellumLib {

using PoDoFo::PdfError;
using PoDoFo::PdfParser;

namespace {

struct Shared {
    std::mutex mutex;
    int users = 0;
    long largest_number = 0;
    bool debug = false;
    bool logging = false;
};

/// Never destroyed, since a document of the host may end after static objects do.
Shared& TheShared() {
    static auto* const shared = new Shared;
    return *shared;
}

}  // namespace

PoDoFoSettings::PoDoFoSettings() {
    Shared& shared = TheShared();
    const std::lock_guard<std::mutex> lock(shared.mutex);
    if (shared.users++ > 0) return;
    shared.largest_number = PdfParser::GetMaxObjectCount();
    shared.debug = PdfError::DebugEnabled();
    shared.logging = PdfError::LoggingEnabled();
    PdfParser::SetMaxObjectCount(std::min(shared.largest_number, LoadBudget::kObjectNumbers));
    PdfError::EnableDebug(false);
    PdfError::EnableLogging(false);
}

PoDoFoSettings::~PoDoFoSettings() {
    Shared& shared = TheShared();
    const std::lock_guard<std::mutex> lock(shared.mutex);
    if (--shared.users > 0) return;
    PdfParser::SetMaxObjectCount(shared.largest_number);
    PdfError::EnableDebug(shared.debug);
    PdfError::EnableLogging(shared.logging);
}

}  // namespace VellumLib
