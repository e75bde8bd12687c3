#pragma once

#include "objects/CPDFArray.h"
#include "objects/CPDFDictionary.h"

namespace VellumLib {

class CPDFDocument;

/// The logical structure tree of a document, with one top element. Replaces the tree
/// that the document had.
class CPDFStructureTreeRoot : public CPDFDictionary {
public:
    explicit CPDFStructureTreeRoot(CPDFDocument& document);
    ~CPDFStructureTreeRoot() override;

    const CPDFDictionary& GetDocumentElement() const { return document_element_; }
    const CPDFDictionary& GetParentTree() const { return parent_tree_; }
    const CPDFArray& GetNums() const { return nums_; }
    /// The elements with marked content on page 0, by their number.
    const CPDFArray& GetParentTreeEntry() const { return parent_tree_entry_; }
    /// An indirect dictionary to which nothing refers.
    const CPDFDictionary& GetSpareDictionary() const { return spare_; }
    const CPDFArray& GetDocumentKids() const { return document_kids_; }

private:
    CPDFDocument* document_;
    CPDFDictionary document_element_;
    CPDFDictionary parent_tree_;
    CPDFArray nums_;
    CPDFArray parent_tree_entry_;
    CPDFDictionary spare_;
    CPDFArray document_kids_;
};

}  // namespace VellumLib
