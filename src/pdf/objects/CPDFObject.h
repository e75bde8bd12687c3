#pragma once

#include "objects/CPDFName.h"
#include "objects/CPDFString.h"

#include <podofo/podofo.h>

#include <cstdint>

namespace VellumLib {

class CPDFArray;
class CPDFDictionary;

/// A value in a document, which owns it. References are not followed. A getter for
/// another type than the value's throws a PdfError.
class CPDFObject {
public:
    explicit CPDFObject(PoDoFo::PdfObject* object) : object_(object) {}
    CPDFObject(const CPDFObject&) = default;
    CPDFObject& operator=(const CPDFObject&) = default;
    virtual ~CPDFObject();

    bool IsReference() const;
    /// 0 when it is no reference.
    std::uint32_t GetObjectNumber() const;
    std::uint16_t GetGenerationNumber() const;
    bool IsDictionary() const;
    CPDFDictionary GetDictionary() const;
    CPDFArray GetArray() const;
    /// An integer counts as a real here.
    double GetReal() const;
    CPDFString GetString() const;
    CPDFName GetName() const;

private:
    PoDoFo::PdfObject& Value() const;

    PoDoFo::PdfObject* object_;
};

}  // namespace VellumLib
