#pragma once

#include "objects/CPDFObject.h"

#include <QString>

#include <podofo/podofo.h>

#include <memory>

namespace VellumLib {

class CPDFDictionary;

/// An array of a document, or one of its own. A copy stands for the same container,
/// which goes with its last owner. An index that the array does not have throws a
/// PdfError (value out of range).
class CPDFArray {
public:
    /// A new empty array of its own.
    CPDFArray();
    explicit CPDFArray(PoDoFo::PdfArray& array) : array_(&array) {}
    /// The array in the object; one that can be referred to.
    explicit CPDFArray(PoDoFo::PdfObject& object);
    CPDFArray(const CPDFArray&) = default;
    CPDFArray& operator=(const CPDFArray&) = default;
    virtual ~CPDFArray();

    CPDFObject operator[](int index) const;
    int GetSize() const;

    // Before the element at `index`; GetSize() appends.
    void InsertName(int index, const QString& value);
    void InsertString(int index, const QString& value);
    void InsertInteger(int index, int value);
    void InsertReal(int index, double value);
    /// A real with all its digits, where InsertReal writes six decimals.
    void InsertPreciseReal(int index, double value);
    void InsertBool(int index, bool value);
    void InsertDictionary(int index, const CPDFDictionary& value);
    void InsertArray(int index, const CPDFArray& value);
    /// Nothing happens for a container that cannot be referred to.
    void InsertReference(int index, const CPDFDictionary& target);
    void InsertReference(int index, const CPDFArray& target);
    CPDFDictionary InsertNewDictionary(int index);
    CPDFArray InsertNewArray(int index);
    /// An index past the end is ignored.
    void RemoveAt(unsigned index);

    static int GetObjectKind() { return 6; }
    const PoDoFo::PdfArray& Container() const { return *array_; }
    /// The object that holds the array; null when it cannot be referred to.
    const PoDoFo::PdfObject* Object() const { return object_; }

private:
    PoDoFo::PdfObject& Insert(int index, const PoDoFo::PdfObject& value);

    std::shared_ptr<PoDoFo::PdfArray> owned_;
    PoDoFo::PdfArray* array_;
    PoDoFo::PdfObject* object_ = nullptr;
};

}  // namespace VellumLib
