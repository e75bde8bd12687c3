#include "objects/CPDFStructureTreeRoot.h"

#include "objects/CPDFDocument.h"

namespace VellumLib {

CPDFStructureTreeRoot::CPDFStructureTreeRoot(CPDFDocument& document)
    : CPDFDictionary(document.CreateDictionary()), document_(&document) {
    AddName("Type", "StructTreeRoot");
    document_->GetCatalog().AddReference("StructTreeRoot", *this);
    document_element_ = document.CreateDictionary();
    AddReference("K", document_element_);
    parent_tree_ = document.CreateDictionary();
    AddReference("ParentTree", parent_tree_);
    nums_ = parent_tree_.AddNewArray("Nums");
    nums_.InsertInteger(0, 0);
    parent_tree_entry_ = nums_.InsertNewArray(1);
    spare_ = document.CreateDictionary();
    document_element_.AddReference("P", *this);
    document_kids_ = document_element_.AddNewArray("K");
    document_element_.AddName("Type", "StructElem");
    document_element_.AddName("S", "Document");
}

CPDFStructureTreeRoot::~CPDFStructureTreeRoot() = default;

}  // namespace VellumLib
