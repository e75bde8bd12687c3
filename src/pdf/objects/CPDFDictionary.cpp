#include "objects/CPDFDictionary.h"

#include "objects/PdfText.h"

#include <QObject>

namespace VellumLib {

using PoDoFo::PdfObject;
using PoDoFo::PdfVariant;

namespace {

[[noreturn]] void ThrowNoKey(const QString& key) {
    ThrowPdfError(PoDoFo::ePdfError_InvalidKey,
                  QObject::tr("The key %1 could not be found within the current dictionary.").arg(key));
}

[[noreturn]] void ThrowOtherType(const QString& key, const char* type) {
    ThrowPdfError(PoDoFo::ePdfError_InvalidDataType,
                  QObject::tr("The key %1 is not of type %2.").arg(key, QLatin1String(type)));
}

}  // namespace

CPDFDictionary::CPDFDictionary()
    : owned_(std::make_shared<PoDoFo::PdfDictionary>()), dictionary_(owned_.get()) {}

CPDFDictionary::CPDFDictionary(PdfObject& object) : dictionary_(&object.GetDictionary()), object_(&object) {}

CPDFDictionary::CPDFDictionary(const CPDFDictionary& other)
    : owned_(other.owned_), dictionary_(other.dictionary_), object_(other.owned_ ? nullptr : other.object_) {}

CPDFDictionary& CPDFDictionary::operator=(const CPDFDictionary& other) {
    if (this == &other) return *this;
    dictionary_ = other.dictionary_;
    if (!other.owned_) object_ = other.object_;
    owned_ = other.owned_;
    return *this;
}

CPDFDictionary& CPDFDictionary::operator=(PdfObject& object) {
    dictionary_ = &object.GetDictionary();
    if (!owned_) object_ = &object;
    return *this;
}

CPDFDictionary::~CPDFDictionary() = default;

PdfObject& CPDFDictionary::Add(const QString& key, const PdfObject& value) {
    const PoDoFo::PdfName name = ToPdfName(key);
    if (name.GetLength() == 0) ThrowNoKey(key);  // PoDoFo finds no value under it again
    dictionary_->AddKey(name, value);
    return *dictionary_->GetKey(name);
}

void CPDFDictionary::AddName(const QString& key, const QString& value) {
    Add(key, ToPdfName(value));
}

void CPDFDictionary::AddString(const QString& key, const QString& value) {
    Add(key, ToPlainString(value));
}

void CPDFDictionary::AddUnicodeString(const QString& key, const QString& value) {
    Add(key, ToUnicodeString(value));
}

void CPDFDictionary::AddInteger(const QString& key, int value) {
    Add(key, PdfObject(static_cast<PoDoFo::pdf_int64>(value)));
}

void CPDFDictionary::AddReal(const QString& key, double value) {
    Add(key, PdfObject(value));
}

void CPDFDictionary::AddBool(const QString& key, bool value) {
    Add(key, PdfObject(value));
}

CPDFDictionary CPDFDictionary::AddNewDictionary(const QString& key) {
    return CPDFDictionary(Add(key, PdfObject(PdfVariant(PoDoFo::PdfDictionary()))).GetDictionary());
}

CPDFArray CPDFDictionary::AddNewArray(const QString& key) {
    return CPDFArray(Add(key, PdfObject(PdfVariant(PoDoFo::PdfArray()))).GetArray());
}

void CPDFDictionary::AddReference(const QString& key, const CPDFDictionary& target) {
    if (target.Object()) Add(key, PdfObject(target.Object()->Reference()));
}

void CPDFDictionary::AddReference(const QString& key, const CPDFArray& target) {
    if (target.Object()) Add(key, PdfObject(target.Object()->Reference()));
}

bool CPDFDictionary::HasKey(const QString& key) const {
    return dictionary_->HasKey(ToPdfName(key));
}

PdfObject* CPDFDictionary::GetKey(const QString& key) const {
    return dictionary_->GetKey(ToPdfName(key));
}

bool CPDFDictionary::RemoveKey(const QString& key) {
    return dictionary_->RemoveKey(ToPdfName(key));
}

PdfObject& CPDFDictionary::Value(const QString& key, const char* type, Test test) const {
    PdfObject* const value = GetKey(key);
    if (!value) ThrowNoKey(key);
    if (!(value->*test)()) ThrowOtherType(key, type);
    return *value;
}

PoDoFo::PdfReference CPDFDictionary::GetReference(const QString& key) const {
    return Value(key, "Reference", &PdfVariant::IsReference).GetReference();
}

CPDFDictionary CPDFDictionary::GetDictionary(const QString& key) const {
    return CPDFDictionary(Value(key, "Dictionary", &PdfVariant::IsDictionary).GetDictionary());
}

CPDFArray CPDFDictionary::GetArray(const QString& key) const {
    return CPDFArray(Value(key, "Array", &PdfVariant::IsArray).GetArray());
}

CPDFName CPDFDictionary::GetName(const QString& key) const {
    return CPDFName(Value(key, "Name", &PdfVariant::IsName).GetName());
}

CPDFString CPDFDictionary::GetString(const QString& key) const {
    const PdfObject* value = GetKey(key);
    const bool hexadecimal = value && value->IsHexString();
    const Test test = hexadecimal ? &PdfVariant::IsHexString : &PdfVariant::IsString;
    const CPDFString text(Value(key, "String", test).GetString());
    return CPDFString(FromPdfBytes(text.ToStdString().c_str()));
}

std::int64_t CPDFDictionary::GetNumber(const QString& key) const {
    return Value(key, "Number", &PdfVariant::IsNumber).GetNumber();
}

double CPDFDictionary::GetReal(const QString& key) const {
    return Value(key, "Double", &PdfVariant::IsReal).GetReal();
}

}  // namespace VellumLib
