#pragma once

#include <Tellurion/BString.h>

namespace VellumLib {

/// The words of the failure that is being handled, a PdfError's among them; to be
/// called in a catch (...) block.
Tellurion::BString CurrentPdfFailure();

/// What is said of an encrypted file.
Tellurion::BString EncryptedText();

}  // namespace VellumLib
