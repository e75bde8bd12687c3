#pragma once

#include <QString>

#include <podofo/podofo.h>

#include <string>

namespace VellumLib {

/// A key or name; what Latin-1 cannot hold becomes a question mark.
PoDoFo::PdfName ToPdfName(const QString& text);
/// A string in Latin-1, without a mark of its encoding.
PoDoFo::PdfString ToPlainString(const QString& text);
/// A string that is marked as Unicode.
PoDoFo::PdfString ToUnicodeString(const QString& text);
/// Bytes up to the first zero, one character each; a null pointer is empty text.
QString FromPdfBytes(const char* bytes);

/// Shortest text that reads back as the same double, without an exponent, which PDF does not
/// know. A PdfError for a value that is not finite.
std::string PreciseDigits(double value);

/// The value under the key of a dictionary, a reference followed once; null when it is
/// missing, leads nowhere, or the holder is no dictionary.
PoDoFo::PdfObject* FollowKey(PoDoFo::PdfVecObjects& objects, const PoDoFo::PdfObject& holder,
                             const PoDoFo::PdfName& key);

/// Throws a PdfError of that code whose information is the text.
[[noreturn]] void ThrowPdfError(PoDoFo::EPdfError code, const QString& text);

}  // namespace VellumLib
