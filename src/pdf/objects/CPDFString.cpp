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
    return text_.IsUnicode() ? FromPdfBytes(text_.GetStringUtf8().c_str()) : FromPdfBytes(text_.GetString());
}

}  // namespace VellumLib
