#include "objects/PdfText.h"

#include <array>
#include <charconv>
#include <cmath>

namespace VellumLib {

PoDoFo::PdfName ToPdfName(const QString& text) {
    return PoDoFo::PdfName(text.toLatin1().toStdString());
}

PoDoFo::PdfString ToPlainString(const QString& text) {
    return PoDoFo::PdfString(text.toLatin1().constData());
}

PoDoFo::PdfString ToUnicodeString(const QString& text) {
    return PoDoFo::PdfString(reinterpret_cast<const PoDoFo::pdf_utf8*>(text.toUtf8().constData()));
}

QString FromPdfBytes(const char* bytes) {
    return bytes ? QString::fromLatin1(bytes) : QString();
}

std::string PreciseDigits(double value) {
    if (!std::isfinite(value)) PODOFO_RAISE_ERROR(PoDoFo::ePdfError_ValueOutOfRange);
    std::array<char, 400> text;
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed).ptr;
    std::string digits(text.data(), end);
    if (digits.find('.') == std::string::npos) digits += ".0";
    return digits;
}

PoDoFo::PdfObject* FollowKey(PoDoFo::PdfVecObjects& objects, const PoDoFo::PdfObject& holder,
                             const PoDoFo::PdfName& key) {
    if (!holder.IsDictionary()) return nullptr;
    auto* value = const_cast<PoDoFo::PdfObject*>(holder.GetDictionary().GetKey(key));
    return value && value->IsReference() ? objects.GetObject(value->GetReference()) : value;
}

void ThrowPdfError(PoDoFo::EPdfError code, const QString& text) {
    PoDoFo::PdfError error(code, nullptr, 0);
    error.SetErrorInformation(text.toLocal8Bit().constData());
    throw error;
}

}  // namespace VellumLib
