#pragma once

#include "load/GuardedLoad.h"
#include "load/PoDoFoSettings.h"
#include "objects/CPDFArray.h"
#include "objects/CPDFDictionary.h"

#include <QString>

#include <podofo/podofo.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>

namespace VellumLib {

class CPDFPage;

/// A PDF: opened, asked, changed and saved. Failures are PdfErrors of PoDoFo. What it
/// hands out belongs to it and must not outlive it. Not for two threads at once.
class CPDFDocument {
public:
    /// Opens and reads the file; objects load when they are asked for. An encrypted
    /// file throws a PdfError (invalid password), one that lacks an object it refers to
    /// a CCorruptedPDFException.
    ///
    /// Of less than the whole extent only the first page's boxes and maps are asked,
    /// and it is not written.
    explicit CPDFDocument(const QString& path, EPDFExtent extent = EPDFExtent::Whole,
                          const std::string& password = {});
    /// A first page that is loaded already.
    explicit CPDFDocument(std::unique_ptr<PoDoFo::PdfMemDocument> first_page);
    ~CPDFDocument();
    CPDFDocument(const CPDFDocument&) = delete;
    CPDFDocument& operator=(const CPDFDocument&) = delete;

    CPDFDictionary GetCatalog();
    bool HasMetadata();
    /// The XML of the document; null without. Leaves the stream uncompressed.
    QString GetMetadata();
    QString GetCreator();
    /// As it is in the file; null when it is missing or not a string, and where the file's
    /// cross-references are damaged. PoDoFo's own values are those of the load.
    QString GetCreationDate();
    QString GetModDate();
    bool IsEncrypted() const;

    /// Counted from 0; the same object each time.
    CPDFPage& GetPage(int index);

    /// A new indirect object, which can be referred to.
    CPDFDictionary CreateDictionary();
    /// A new indirect object; the wrapper does not know it and cannot be referred to.
    CPDFArray CreateArray();
    CPDFDictionary GetDictionaryFromReference(const PoDoFo::PdfReference& reference);
    CPDFDictionary GetDictionaryFromReference(std::uint32_t object, std::uint16_t generation);
    CPDFArray GetArrayFromReference(const PoDoFo::PdfReference& reference);
    CPDFArray GetArrayFromReference(std::uint32_t object, std::uint16_t generation);
    bool RemoveObject(const PoDoFo::PdfReference& reference);
    /// Removes what the dictionary's values refer to; how many there were.
    int RemoveReferencedObjects(const CPDFDictionary& dictionary);

    void Write(const QString& path);

    PoDoFo::PdfMemDocument& Document() { return *document_; }

private:
    void Load(const QString& path, const std::string& password);
    QString GetInfoText(const char* key);
    PoDoFo::PdfObject* ObjectOf(const PoDoFo::PdfReference& reference);

    const PoDoFoSettings settings_;  // the first member, since the others use PoDoFo until they end
    const EPDFExtent extent_;
    std::unique_ptr<PoDoFo::PdfMemDocument> document_;
    std::map<int, std::unique_ptr<CPDFPage>> pages_;
    std::string path_;  ///< empty for a document that was loaded elsewhere
};

}  // namespace VellumLib
