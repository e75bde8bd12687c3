#pragma once

#include <podofo/podofo.h>

namespace VellumLib {

/// The objects of a file, each read when it is asked for. What cannot be read ends in a PdfError.
class ObjectSource {
public:
    ObjectSource() = default;
    virtual ~ObjectSource() = default;
    ObjectSource(const ObjectSource&) = delete;
    ObjectSource& operator=(const ObjectSource&) = delete;

    /// Of the newest section.
    virtual const PoDoFo::PdfDictionary& Trailer() const = 0;
    /// Throws for an object that the cross-references lack.
    virtual void RequireObject(const PoDoFo::PdfReference& reference) = 0;
    /// Reads the value that the object's own reference names, without its stream.
    virtual void Read(PoDoFo::PdfObject& object) = 0;
    /// The file is encrypted, and a password has opened it.
    virtual bool IsUnlocked() const { return false; }
};

}  // namespace VellumLib
