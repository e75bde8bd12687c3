#pragma once

#include "import/CMeasureDictionaryData.h"

#include <QString>
#include <cstdint>
#include <vector>

namespace VellumLib {

class CPDFArray;
class CPDFDictionary;
class CPDFDocument;
class ReadingBudget;

/// The reader of the viewport dialect: one record for each dictionary in the first
/// page's "VP" array, in file order. It chooses nothing and checks nothing; a fault of
/// any viewport ends the whole import with a PdfError. Lives for one read.
class CSpatialPDFImport {
public:
    CSpatialPDFImport(CPDFDocument* document, const QString& name, std::uint64_t option);
    CSpatialPDFImport(const CSpatialPDFImport&) = delete;
    CSpatialPDFImport& operator=(const CSpatialPDFImport&) = delete;
    virtual ~CSpatialPDFImport() = default;

    /// Appends; to be called once.
    void Import();
    std::vector<CMeasureDictionaryData>& GetMeasures() { return Measures; }

    /// One entry of "VP" by itself.
    static CMeasureDictionaryData ReadViewport(CPDFDocument& document, const CPDFDictionary& viewport,
                                               ReadingBudget& budget);

private:
    static void ReadCoordSys(CMeasureDictionaryData::CoordSysPart& part, CPDFDocument& document,
                             const CPDFDictionary& measure);
    static void ReadPairArray(const QString& key, std::vector<CMeasureDictionaryData::Pair>& pairs,
                              const CPDFDictionary& dictionary, ReadingBudget& budget);

    std::vector<CMeasureDictionaryData> Measures;
    CPDFDocument* Document;
    QString Name;          ///< kept, not used
    std::uint64_t Option;  ///< kept, not used
};

}  // namespace VellumLib
