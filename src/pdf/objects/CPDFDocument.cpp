#include "objects/CPDFDocument.h"

#include "load/CrossReferences.h"
#include "load/PageSearch.h"
#include "objects/CCorruptedPDFException.h"
#include "objects/CPDFPage.h"
#include "objects/CPDFString.h"
#include "objects/ContentReader.h"
#include "objects/PdfText.h"

#include <Tellurion/BString.h>

#include <QObject>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

namespace VellumLib {

using PoDoFo::PdfObject;
using PoDoFo::PdfReference;

namespace {

constexpr std::size_t kWriteBuffer = std::size_t{64} << 10;

QString DetailOf(const PoDoFo::PdfError& error) {
    const auto& stack = error.GetCallstack();
    return stack.empty() ? QString() : FromPdfBytes(stack.back().GetInformation().c_str());
}

QString WrongType(const char* type) {
    return QObject::tr("The reference is not of type %1.").arg(QLatin1String(type));
}

/// A name on disk need not be UTF-8: its other bytes come as lone surrogates, of which Qt
/// would make question marks.
std::string BytesOf(const QString& path) {
    return Tellurion::BString(std::u16string(reinterpret_cast<const char16_t*>(path.utf16()),
                                             static_cast<std::size_t>(path.size())))
        .StdStr();
}

/// A file buffer that remembers why a write failed.
class ReasonedBuffer : public std::filebuf {
public:
    /// The error number of the system; 0 while nothing failed.
    int Reason() const { return reason_; }
    /// False when anything did not reach the file.
    bool Close() {
        errno = 0;
        return Kept(close() != nullptr) && reason_ == 0;
    }

protected:
    int_type overflow(int_type next) override {
        errno = 0;
        const int_type result = std::filebuf::overflow(next);
        Kept(!traits_type::eq_int_type(result, traits_type::eof()));
        return result;
    }
    std::streamsize xsputn(const char* bytes, std::streamsize count) override {
        errno = 0;
        const std::streamsize written = std::filebuf::xsputn(bytes, count);
        Kept(written == count);
        return written;
    }
    int sync() override {
        errno = 0;
        const int result = std::filebuf::sync();
        Kept(result == 0);
        return result;
    }

private:
    bool Kept(bool good) {
        if (!good && reason_ == 0) reason_ = errno != 0 ? errno : EIO;
        return good;
    }

    int reason_ = 0;
};

}  // namespace

CPDFDocument::CPDFDocument(const QString& path, EPDFExtent extent, const std::string& password)
    : extent_(extent) {
    try {
        Load(path, password);
    } catch (const PoDoFo::PdfError& error) {
        if (error.GetError() != PoDoFo::ePdfError_NoObject) throw;
        throw CCorruptedPDFException(
            QObject::tr("The PDF was partially corrupt and could not be read, the file will open without "
                        "referencing\n\n Details : %1")
                .arg(DetailOf(error)));
    }
}

CPDFDocument::CPDFDocument(std::unique_ptr<PoDoFo::PdfMemDocument> first_page)
    : extent_(EPDFExtent::FirstPage), document_(std::move(first_page)) {}

void CPDFDocument::Load(const QString& path, const std::string& password) {
    path_ = BytesOf(path);
    document_ = LoadGuarded(path_, extent_, password);
    if (IsEncrypted()) PODOFO_RAISE_ERROR(PoDoFo::ePdfError_InvalidPassword);
}

CPDFDocument::~CPDFDocument() {
    pages_.clear();
}

bool CPDFDocument::IsEncrypted() const {
    return document_->GetEncrypted();
}

CPDFDictionary CPDFDocument::GetCatalog() {
    PdfObject* catalog = document_->GetCatalog();
    if (!catalog) PODOFO_RAISE_ERROR(PoDoFo::ePdfError_NoObject);
    return CPDFDictionary(catalog->GetDictionary());
}

bool CPDFDocument::HasMetadata() {
    return GetCatalog().HasKey("Metadata");
}

QString CPDFDocument::GetMetadata() {
    PdfObject* metadata = document_->GetMetadata();
    if (!metadata || !metadata->HasStream()) return QString();
    auto* stream = dynamic_cast<PoDoFo::PdfMemStream*>(metadata->GetStream());
    if (!stream) return QString();
    CountDecodedBytes(metadata);  // refuses what would not fit, before it is kept
    stream->Uncompress();
    const auto* bytes = stream->Get();
    const auto length = static_cast<uint>(stream->GetLength());
    return bytes ? QString::fromLatin1(bytes, static_cast<int>(qstrnlen(bytes, length))) : QString();
}

QString CPDFDocument::GetCreator() {
    const PoDoFo::PdfInfo* info = document_->GetInfo();
    return info ? CPDFString(info->GetCreator()).ToQString() : QString();
}

QString CPDFDocument::GetInfoText(const char* key) {
    try {
        FileWindow file(path_);
        CrossReferences references(file);
        const PdfObject info = FollowedEntry(references, references.Trailer(), "Info");
        if (!info.IsDictionary()) return QString();
        const PdfObject value = FollowedEntry(references, info.GetDictionary(), key);
        if (!value.IsString() && !value.IsHexString()) return QString();
        return CPDFString(value.GetString()).ToQString();
    } catch (const PoDoFo::PdfError&) {
        return QString();
    }
}

QString CPDFDocument::GetCreationDate() {
    return GetInfoText("CreationDate");
}

QString CPDFDocument::GetModDate() {
    return GetInfoText("ModDate");
}

CPDFPage& CPDFDocument::GetPage(int index) {
    const auto found = pages_.find(index);
    if (found != pages_.end()) return *found->second;
    auto page = std::make_unique<CPDFPage>(this, index);
    return *pages_.emplace(index, std::move(page)).first->second;
}

CPDFDictionary CPDFDocument::CreateDictionary() {
    return CPDFDictionary(*document_->GetObjects().CreateObject(PoDoFo::PdfVariant(PoDoFo::PdfDictionary())));
}

CPDFArray CPDFDocument::CreateArray() {
    PdfObject* object = document_->GetObjects().CreateObject(PoDoFo::PdfVariant(PoDoFo::PdfArray()));
    return CPDFArray(object->GetArray());
}

PdfObject* CPDFDocument::ObjectOf(const PdfReference& reference) {
    return document_->GetObjects().GetObject(reference);
}

CPDFDictionary CPDFDocument::GetDictionaryFromReference(const PdfReference& reference) {
    PdfObject* object = ObjectOf(reference);
    if (!object || !object->IsDictionary())
        ThrowPdfError(PoDoFo::ePdfError_InvalidDataType, WrongType("Dictionary"));
    return CPDFDictionary(*object);
}

CPDFDictionary CPDFDocument::GetDictionaryFromReference(std::uint32_t object, std::uint16_t generation) {
    return GetDictionaryFromReference(PdfReference(object, generation));
}

CPDFArray CPDFDocument::GetArrayFromReference(const PdfReference& reference) {
    PdfObject* object = ObjectOf(reference);
    if (!object || !object->IsArray()) ThrowPdfError(PoDoFo::ePdfError_InvalidDataType, WrongType("Array"));
    return CPDFArray(object->GetArray());
}

CPDFArray CPDFDocument::GetArrayFromReference(std::uint32_t object, std::uint16_t generation) {
    return GetArrayFromReference(PdfReference(object, generation));
}

bool CPDFDocument::RemoveObject(const PdfReference& reference) {
    const std::unique_ptr<PdfObject> removed(document_->GetObjects().RemoveObject(reference, false));
    return removed != nullptr;
}

int CPDFDocument::RemoveReferencedObjects(const CPDFDictionary& dictionary) {
    std::vector<PdfReference> targets;
    for (const auto& [name, value] : dictionary.Container().GetKeys())
        if (value->IsReference()) targets.push_back(value->GetReference());
    int removed = 0;
    for (const PdfReference& target : targets)
        removed += RemoveObject(target) ? 1 : 0;
    return removed;
}

void CPDFDocument::Write(const QString& path) {
    if (extent_ != EPDFExtent::Whole) PODOFO_RAISE_ERROR(PoDoFo::ePdfError_InternalLogic);
    if (IsEncrypted()) PODOFO_RAISE_ERROR(PoDoFo::ePdfError_InvalidPassword);
    std::vector<char> buffer(kWriteBuffer);
    ReasonedBuffer file;
    file.pubsetbuf(buffer.data(), static_cast<std::streamsize>(buffer.size()));
    if (!file.open(BytesOf(path), std::ios::out | std::ios::binary | std::ios::trunc))
        ThrowPdfError(PoDoFo::ePdfError_FileNotFound, path);
    std::ostream out(&file);
    PoDoFo::PdfOutputDevice device(&out);
    try {
        document_->Write(&device);
    } catch (const PoDoFo::PdfError&) {
        if (file.Reason() == 0) throw;
    }
    if (!file.Close()) ThrowPdfError(PoDoFo::ePdfError_InvalidDeviceOperation, std::strerror(file.Reason()));
}

}  // namespace VellumLib
