#include "objects/CPDFArray.h"

#include "objects/CPDFDictionary.h"
#include "objects/PdfText.h"

#include <string>

namespace VellumLib {

using PoDoFo::PdfObject;

namespace {

/// Raw data has no separator of its own, hence the blank.
PoDoFo::PdfData PreciseReal(double value) {
    return PoDoFo::PdfData(std::string(" ").append(PreciseDigits(value)).c_str());
}

}  // namespace

CPDFArray::CPDFArray() : owned_(std::make_shared<PoDoFo::PdfArray>()), array_(owned_.get()) {}

CPDFArray::CPDFArray(PdfObject& object) : array_(&object.GetArray()), object_(&object) {}

CPDFArray::~CPDFArray() = default;

int CPDFArray::GetSize() const {
    return static_cast<int>(array_->GetSize());
}

CPDFObject CPDFArray::operator[](int index) const {
    if (index < 0 || index >= GetSize()) PODOFO_RAISE_ERROR(PoDoFo::ePdfError_ValueOutOfRange);
    return CPDFObject(&(*array_)[static_cast<std::size_t>(index)]);
}

PdfObject& CPDFArray::Insert(int index, const PdfObject& value) {
    if (index < 0 || index > GetSize()) PODOFO_RAISE_ERROR(PoDoFo::ePdfError_ValueOutOfRange);
    return *array_->insert(array_->begin() + index, value);
}

void CPDFArray::InsertName(int index, const QString& value) {
    Insert(index, ToPdfName(value));
}

void CPDFArray::InsertString(int index, const QString& value) {
    Insert(index, ToPlainString(value));
}

void CPDFArray::InsertInteger(int index, int value) {
    Insert(index, PdfObject(static_cast<PoDoFo::pdf_int64>(value)));
}

void CPDFArray::InsertReal(int index, double value) {
    Insert(index, PdfObject(value));
}

void CPDFArray::InsertPreciseReal(int index, double value) {
    Insert(index, PdfObject(PoDoFo::PdfVariant(PreciseReal(value))));
}

void CPDFArray::InsertBool(int index, bool value) {
    Insert(index, PdfObject(value));
}

void CPDFArray::InsertDictionary(int index, const CPDFDictionary& value) {
    Insert(index, PdfObject(PoDoFo::PdfVariant(value.Container())));
}

void CPDFArray::InsertArray(int index, const CPDFArray& value) {
    Insert(index, PdfObject(PoDoFo::PdfVariant(value.Container())));
}

void CPDFArray::InsertReference(int index, const CPDFDictionary& target) {
    if (target.Object()) Insert(index, PdfObject(target.Object()->Reference()));
}

void CPDFArray::InsertReference(int index, const CPDFArray& target) {
    if (target.Object()) Insert(index, PdfObject(target.Object()->Reference()));
}

CPDFDictionary CPDFArray::InsertNewDictionary(int index) {
    return CPDFDictionary(
        Insert(index, PdfObject(PoDoFo::PdfVariant(PoDoFo::PdfDictionary()))).GetDictionary());
}

CPDFArray CPDFArray::InsertNewArray(int index) {
    return CPDFArray(Insert(index, PdfObject(PoDoFo::PdfVariant(PoDoFo::PdfArray()))).GetArray());
}

void CPDFArray::RemoveAt(unsigned index) {
    if (index < array_->GetSize()) array_->erase(array_->begin() + static_cast<std::ptrdiff_t>(index));
}

}  // namespace VellumLib
