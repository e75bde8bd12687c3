#pragma once

#include "objects/CPDFArray.h"
#include "objects/CPDFDictionary.h"

#include <QString>

#include <cstdint>

namespace VellumLib {

class CPDFDocument;
class CPDFStructureTreeRoot;

/// A named element of the structure tree with user properties. The wrapper may go at
/// once: the element stays in the document.
class CPDFStructureElement : public CPDFDictionary {
public:
    /// Appends itself to `kids`, as a rule the kids of the root's top element.
    CPDFStructureElement(CPDFDocument& document, CPDFStructureTreeRoot& root, CPDFArray& kids,
                         bool has_kids_array, int mcid, const QString& title);
    /// Appends itself to no list; the caller places it.
    CPDFStructureElement(CPDFDocument& document, CPDFStructureTreeRoot& root, bool has_kids_array, int mcid,
                         const QString& title);
    ~CPDFStructureElement() override;

    void SetTitle(const QString& title);
    const QString& GetTitle() const { return title_; }
    void AddUserProperty(const QString& name, const QString& value);

    std::uint32_t GetObjectNumber() const { return object_number_; }
    std::uint16_t GetGenerationNumber() const { return generation_number_; }

private:
    void SetUp(CPDFDocument& document, CPDFStructureTreeRoot& root);

    std::int32_t mcid_;
    QString title_;
    std::int32_t property_count_ = 0;
    bool has_kids_array_;
    CPDFDictionary attributes_;
    CPDFArray properties_;
    CPDFArray kids_;
    std::uint32_t object_number_ = 0;
    std::uint16_t generation_number_ = 0;
};

}  // namespace VellumLib
