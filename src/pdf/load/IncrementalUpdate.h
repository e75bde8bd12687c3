#pragma once

#include "load/CrossReferences.h"

#include <podofo/podofo.h>

#include <cstdint>
#include <map>
#include <string>

namespace VellumLib {

/// Changes of a file as bytes behind its end: objects that are new or take the place of older
/// ones, a section of cross-references of the kind that the newest one has, and a trailer that
/// leads to that one. What is in the file stays as it is.
class IncrementalUpdate {
public:
    /// Both have to outlive the update. A PdfError for an encrypted file.
    IncrementalUpdate(CrossReferences& references, FileWindow& file);

    /// A number of its own for a new object.
    PoDoFo::PdfReference NewObject();
    /// `body` is the object's value as it is to be in the file, a stream included.
    void Put(const PoDoFo::PdfReference& reference, std::string body);
    /// The bytes to append. To be called once.
    std::string Tail();

private:
    struct Entry {
        std::uint64_t place;
        std::uint64_t generation;
    };

    std::string TrailerEntries(const std::string& objects) const;
    void AppendTable(std::string& tail) const;
    void AppendStream(std::string& tail);

    CrossReferences& references_;
    FileWindow& file_;
    std::int64_t next_;
    std::map<PoDoFo::PdfReference, std::string> bodies_;
    std::map<std::uint64_t, Entry> entries_;
};

}  // namespace VellumLib
