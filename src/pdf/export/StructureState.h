#pragma once

#include <podofo/podofo.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

namespace VellumLib {

/// Looks an object up; null for one that the file does not have.
using ObjectLookup = std::function<const PoDoFo::PdfObject*(const PoDoFo::PdfReference&)>;

/// The logical structure of a file, as far as an export that adds an element has to know it.
struct StructureState {
    bool present = false;  ///< the catalog leads to a tree
    std::string fault;     ///< why the tree cannot be extended; empty where it can
    PoDoFo::PdfReference root;
    /// What gets the new element: the top element, where the root has just one, as it should; else
    /// the root.
    PoDoFo::PdfReference parent;
    bool has_kids = false;                     ///< the parent has one, or an array
    std::optional<PoDoFo::PdfReference> kids;  ///< the array, where it is an object of its own
    /// The element that an earlier export wrote for the page.
    std::optional<PoDoFo::PdfReference> own;
};

/// Goes through the tree from its root down, level by level, and looks at no more than
/// `max_elements` of its elements.
StructureState LookAtStructure(const PoDoFo::PdfDictionary& catalog, const PoDoFo::PdfReference& page,
                               const ObjectLookup& find, std::size_t max_elements);

}  // namespace VellumLib
