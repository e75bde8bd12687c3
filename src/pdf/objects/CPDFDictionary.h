#pragma once

#include "objects/CPDFArray.h"
#include "objects/CPDFName.h"
#include "objects/CPDFString.h"

#include <QString>

#include <podofo/podofo.h>

#include <cstdint>
#include <memory>

namespace VellumLib {

/// A dictionary of a document, or one of its own. A copy stands for the same
/// container, which goes with its last owner.
///
/// A typed getter throws a PdfError that names the key: invalid key where it is
/// missing, invalid data type where the value is of another type. References are not
/// followed, and a whole number is no real.
class CPDFDictionary {
public:
    /// A new empty dictionary of its own.
    CPDFDictionary();
    explicit CPDFDictionary(PoDoFo::PdfDictionary& dictionary) : dictionary_(&dictionary) {}
    /// The dictionary in the object; one that can be referred to.
    explicit CPDFDictionary(PoDoFo::PdfObject& object);
    // Both take the object of the other over only where that one does not own its container.
    CPDFDictionary(const CPDFDictionary& other);
    CPDFDictionary& operator=(const CPDFDictionary& other);
    /// Stands for the dictionary in the object from now on, and can be referred to
    /// unless it was made as one of its own, which it keeps until it goes.
    CPDFDictionary& operator=(PoDoFo::PdfObject& object);
    virtual ~CPDFDictionary();

    void AddName(const QString& key, const QString& value);
    void AddString(const QString& key, const QString& value);
    void AddUnicodeString(const QString& key, const QString& value);
    void AddInteger(const QString& key, int value);
    void AddReal(const QString& key, double value);
    void AddBool(const QString& key, bool value);
    CPDFDictionary AddNewDictionary(const QString& key);
    CPDFArray AddNewArray(const QString& key);
    /// Nothing happens for a container that cannot be referred to.
    void AddReference(const QString& key, const CPDFDictionary& target);
    void AddReference(const QString& key, const CPDFArray& target);

    bool HasKey(const QString& key) const;
    /// Null when it is missing.
    PoDoFo::PdfObject* GetKey(const QString& key) const;
    bool RemoveKey(const QString& key);

    PoDoFo::PdfReference GetReference(const QString& key) const;
    CPDFDictionary GetDictionary(const QString& key) const;
    CPDFArray GetArray(const QString& key) const;
    CPDFName GetName(const QString& key) const;
    /// A plain string made of the value's text: what is not ASCII does not survive.
    CPDFString GetString(const QString& key) const;
    std::int64_t GetNumber(const QString& key) const;
    double GetReal(const QString& key) const;

    static int GetObjectKind() { return 5; }
    const PoDoFo::PdfDictionary& Container() const { return *dictionary_; }
    /// The object that holds the dictionary; null when it cannot be referred to.
    const PoDoFo::PdfObject* Object() const { return object_; }

private:
    using Test = bool (PoDoFo::PdfVariant::*)() const;
    PoDoFo::PdfObject& Value(const QString& key, const char* type, Test test) const;
    PoDoFo::PdfObject& Add(const QString& key, const PoDoFo::PdfObject& value);

    std::shared_ptr<PoDoFo::PdfDictionary> owned_;
    PoDoFo::PdfDictionary* dictionary_;
    PoDoFo::PdfObject* object_ = nullptr;
};

}  // namespace VellumLib
