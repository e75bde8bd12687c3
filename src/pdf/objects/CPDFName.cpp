#include "objects/CPDFName.h"

#include "objects/PdfText.h"

namespace VellumLib {

CPDFName::CPDFName(const QString& text) : name_(ToPdfName(text)) {}

CPDFName::~CPDFName() = default;

QString CPDFName::ToQString() const {
    return FromPdfBytes(name_.GetName().c_str());
}

}  // namespace VellumLib
