#include "import/PdfFailure.h"

#include <Tellurion/BException.h>

#include <podofo/podofo.h>

#include <exception>
#include <string>

namespace VellumLib {
namespace {

using PoDoFo::PdfError;
using Tellurion::BString;

BString WordsOf(const PdfError& error) {
    if (error.GetError() == PoDoFo::ePdfError_InvalidPassword) return EncryptedText();
    // The last entry is the deepest: where it happened.
    if (!error.GetCallstack().empty()) {
        const std::string& text = error.GetCallstack().back().GetInformation();
        if (!text.empty()) return BString(text);
    }
    if (const char* message = PdfError::ErrorMessage(error.GetError())) return message;
    const char* name = PdfError::ErrorName(error.GetError());
    return BString::Format("The PDF file cannot be read: %s", name ? name : "unknown fault");
}

}  // namespace

BString CurrentPdfFailure() {
    try {
        throw;
    } catch (const PdfError& error) {
        return WordsOf(error);
    } catch (const Tellurion::BException& error) {
        return error.GetDetailedMessage();
    } catch (const std::exception& error) {
        return error.what();
    }
}

BString EncryptedText() {
    return "The PDF file is encrypted.";
}

}  // namespace VellumLib
