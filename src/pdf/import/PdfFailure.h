#pragma once

#include <Tellurion/BString.h>

namespace VellumLib {

class CPDFPage;

/// The words of the failure that is being handled, a PdfError's among them; to be
/// called in a catch (...) block.
Tellurion::BString CurrentPdfFailure();

/// What is said of an encrypted file.
Tellurion::BString EncryptedText();

/// The page's own "Rotate" in degrees and "UserUnit" in 1/72 inch, or what holds without them.
int PageRotation(CPDFPage& page);
double PageUserUnit(CPDFPage& page);

}  // namespace VellumLib
