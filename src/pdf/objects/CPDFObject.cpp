#include "objects/CPDFObject.h"

#include "objects/CPDFArray.h"
#include "objects/CPDFDictionary.h"

namespace VellumLib {

CPDFObject::~CPDFObject() = default;

PoDoFo::PdfObject& CPDFObject::Value() const {
    if (!object_) PODOFO_RAISE_ERROR(PoDoFo::ePdfError_InvalidHandle);
    return *object_;
}

bool CPDFObject::IsReference() const {
    return Value().IsReference();
}

std::uint32_t CPDFObject::GetObjectNumber() const {
    return IsReference() ? Value().GetReference().ObjectNumber() : 0;
}

std::uint16_t CPDFObject::GetGenerationNumber() const {
    return IsReference() ? Value().GetReference().GenerationNumber() : std::uint16_t{0};
}

bool CPDFObject::IsDictionary() const {
    return Value().IsDictionary();
}

CPDFDictionary CPDFObject::GetDictionary() const {
    return CPDFDictionary(Value().GetDictionary());
}

CPDFArray CPDFObject::GetArray() const {
    return CPDFArray(Value().GetArray());
}

double CPDFObject::GetReal() const {
    return Value().GetReal();
}

CPDFString CPDFObject::GetString() const {
    return CPDFString(Value().GetString());
}

CPDFName CPDFObject::GetName() const {
    return CPDFName(Value().GetName());
}

}  // namespace VellumLib
