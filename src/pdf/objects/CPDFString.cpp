#include "objects/CPDFString.h"

#include "objects/PdfText.h"

namespace VellumLib {

CPDFString::CPDFString() : text_("") {}

CPDFString::CPDFString(const QString& text) : text_(ToPlainString(text)) {}

CPDFString::~CPDFString() = default;

std::string CPDFString::ToStdString() const {
    return text_.IsValid() ? text_.GetStringUtf8() : std::string();
}

QString CPDFString::ToQString() const {
    if (!text_.IsValid()) return QString();
    if (text_.IsUnicode()) return FromPdfBytes(text_.GetStringUtf8().c_str());
    const auto length = static_cast<uint>(text_.GetLength());
    return QString::fromLatin1(text_.GetString(), static_cast<int>(qstrnlen(text_.GetString(), length)));
}

}  // namespace VellumLib
