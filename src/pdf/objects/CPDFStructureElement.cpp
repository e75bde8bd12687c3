#include "objects/CPDFStructureElement.h"

#include "objects/CPDFDocument.h"
#include "objects/CPDFPage.h"
#include "objects/CPDFStructureTreeRoot.h"

namespace VellumLib {

CPDFStructureElement::CPDFStructureElement(CPDFDocument& document, CPDFStructureTreeRoot& root,
                                           CPDFArray& kids, bool has_kids_array, int mcid,
                                           const QString& title)
    : CPDFDictionary(document.CreateDictionary()),
      mcid_(mcid),
      title_(title),
      has_kids_array_(has_kids_array) {
    kids.InsertReference(kids.GetSize(), *this);
    SetUp(document, root);
}

CPDFStructureElement::CPDFStructureElement(CPDFDocument& document, CPDFStructureTreeRoot& root,
                                           bool has_kids_array, int mcid, const QString& title)
    : CPDFDictionary(document.CreateDictionary()),
      mcid_(mcid),
      title_(title),
      has_kids_array_(has_kids_array) {
    SetUp(document, root);
}

CPDFStructureElement::~CPDFStructureElement() = default;

void CPDFStructureElement::SetUp(CPDFDocument& document, CPDFStructureTreeRoot& root) {
    object_number_ = Object()->Reference().ObjectNumber();
    generation_number_ = Object()->Reference().GenerationNumber();
    attributes_ = AddNewDictionary("A");
    attributes_.AddName("O", "UserProperties");
    properties_ = attributes_.AddNewArray("P");
    if (has_kids_array_) {
        kids_ = AddNewArray("K");
        kids_.InsertInteger(0, mcid_);
    } else {
        AddInteger("K", mcid_);
    }
    AddReference("P", root.GetDocumentElement());
    AddName("S", "Feature");
    SetTitle(title_);
    AddName("Type", "StructElem");
    AddReference("Pg", document.GetPage(0).GetDictionary());
    CPDFArray entry = root.GetParentTreeEntry();
    entry.InsertReference(entry.GetSize(), *this);
}

void CPDFStructureElement::SetTitle(const QString& title) {
    title_ = title;
    AddUnicodeString("T", title_);
}

void CPDFStructureElement::AddUserProperty(const QString& name, const QString& value) {
    CPDFDictionary property = properties_.InsertNewDictionary(property_count_);
    property.AddUnicodeString("N", name);
    property.AddUnicodeString("V", value);
    ++property_count_;
}

}  // namespace VellumLib
