#include "import/PdfFailure.h"

#include "objects/CPDFDictionary.h"
#include "objects/CPDFPage.h"

#include <Tellurion/BException.h>

#include <podofo/podofo.h>

#include <exception>
#include <string>

namespace VellumLib {
namespace {

using PoDoFo::PdfError;
using PoDoFo::PdfObject;
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

const PdfObject* Value(CPDFPage& page, const char* key) {
    const PdfObject* value = page.GetDictionary().GetKey(key);
    return value && (value->IsNumber() || value->IsReal()) ? value : nullptr;
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

int PageRotation(CPDFPage& page) {
    constexpr int kFullTurn = 360;
    const PdfObject* value = Value(page, "Rotate");
    if (!value) return 0;
    const auto degrees = static_cast<int>(value->GetNumber() % kFullTurn);
    return degrees < 0 ? degrees + kFullTurn : degrees;
}

double PageUserUnit(CPDFPage& page) {
    const PdfObject* value = Value(page, "UserUnit");
    return value ? value->GetReal() : 1.0;
}

}  // namespace VellumLib
