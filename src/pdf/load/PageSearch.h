#pragma once

#include "load/ObjectSource.h"

#include <podofo/podofo.h>

#include <array>
#include <optional>

namespace VellumLib {

/// A page of a document, found without a look at those behind it.
struct FoundPage {
    PoDoFo::PdfReference reference;
    PoDoFo::PdfDictionary dictionary;
    /// Left, bottom, right, top of its media box, which it may inherit.
    std::optional<std::array<double, 4>> media;
};

/// The value, or what it refers to.
PoDoFo::PdfObject Followed(ObjectSource& objects, const PoDoFo::PdfObject& value);
/// The same of an entry of a dictionary; null where it is missing.
PoDoFo::PdfObject FollowedEntry(ObjectSource& objects, const PoDoFo::PdfDictionary& dictionary,
                                const char* key);

/// The page of that number, counted from 0. A PdfError where the document has no such page, or
/// the way to it is not plain.
FoundPage FindPage(ObjectSource& objects, long index);

}  // namespace VellumLib
