#pragma once

#include "import/CGeoPDFImport.h"

#include "import/ReadingBudget.h"
#include "objects/CPDFDictionary.h"

#include <vector>

namespace VellumLib {

class CPDFArray;
class CPDFDocument;

/// Reads the LGIDict of a document's first page; of several, the one whose neatline
/// has the largest area. Numbers are strings in this dialect. Faults are PdfErrors.
class CGeoPDFImportWM final : public CGeoPDFImport {
public:
    explicit CGeoPDFImportWM(CPDFDocument* document);
    /// For that dictionary, whatever the others enclose.
    CGeoPDFImportWM(CPDFDocument* document, const CPDFDictionary& dictionary, const ReadingBudget& budget);
    ~CGeoPDFImportWM() = default;

    void ReadCTM() override;
    void ReadRegistration() override;
    void ReadProjection() override;
    void ReadNeatline() override;
    void ReadPageSize() override;

    const std::string& GetDescription() const { return Description; }
    /// What is left of it.
    const ReadingBudget& GetBudget() const { return Budget; }

    /// The dictionary at that index of the array: direct or through a reference, empty
    /// for anything else.
    static CPDFDictionary DictionaryAt(CPDFDocument& document, const CPDFArray& array, int index);
    /// The index of the dictionary that is read; 0 for an array of one.
    static int ChooseDictionary(CPDFDocument& document, const CPDFArray& array);
    static std::vector<CMeasureDictionaryData::Pair> NeatlineOf(const CPDFDictionary& dictionary,
                                                                ReadingBudget& budget);

private:
    void Select(const CPDFDictionary& dictionary);

    CPDFDocument* Document;
    CPDFDictionary LGIDict;
    ReadingBudget Budget;
};

}  // namespace VellumLib
