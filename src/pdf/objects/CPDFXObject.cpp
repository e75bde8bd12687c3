#include "objects/CPDFXObject.h"

namespace VellumLib {

CPDFXObject::CPDFXObject(PoDoFo::PdfObject* object) : form_(std::make_unique<PoDoFo::PdfXObject>(object)) {}

CPDFXObject::~CPDFXObject() = default;

std::uint32_t CPDFXObject::GetObjectNumber() const {
    return form_->GetObject()->Reference().ObjectNumber();
}

void CPDFXObject::OpenContents() {
    if (!tokenizer_)
        tokenizer_ = std::make_unique<ContentTokenizer>(
            DecodeContents(form_->GetObject()->GetOwner(), form_->GetObject()));
}

void CPDFXObject::WriteStatement(const CPDFStatement& statement) {
    output_ += statement.ToText();
}

void CPDFXObject::WriteText(const QString& text) {
    output_ += text;
}

void CPDFXObject::FlushContents() {
    const QByteArray bytes = output_.toLatin1();
    form_->GetObject()->GetStream()->Set(bytes.constData(), bytes.size());
}

}  // namespace VellumLib
