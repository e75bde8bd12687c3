#include "import/CSpatialPDFImport.h"

#include "import/ArrayAccess.h"
#include "import/ReadingBudget.h"
#include "objects/CPDFArray.h"
#include "objects/CPDFDictionary.h"
#include "objects/CPDFDocument.h"
#include "objects/CPDFName.h"
#include "objects/CPDFObject.h"
#include "objects/CPDFPage.h"
#include "objects/CPDFString.h"

namespace VellumLib {

CSpatialPDFImport::CSpatialPDFImport(CPDFDocument* document, const QString& name, std::uint64_t option)
    : Document(document), Name(name), Option(option) {}

void CSpatialPDFImport::Import() {
    CPDFPage page(Document->GetPage(0));
    const CPDFArray viewports = page.GetDictionary().GetArray("VP");
    const int count = viewports.GetSize();
    ReadingBudget budget;
    for (int i = 0; i < count; ++i) {
        const CPDFObject entry = viewports[i];
        if (entry.IsDictionary()) Measures.push_back(ReadViewport(*Document, entry.GetDictionary(), budget));
    }
}

/// An indirect "Measure" and "GCS" alone are followed: a direct dictionary is of the
/// wrong type here, though the page counts as one of this dialect.
CMeasureDictionaryData CSpatialPDFImport::ReadViewport(CPDFDocument& document, const CPDFDictionary& viewport,
                                                       ReadingBudget& budget) {
    CMeasureDictionaryData record;
    const CPDFArray box = viewport.GetArray("BBox");
    budget.Take(box.GetSize());
    for (int i = 0; i < box.GetSize(); ++i)
        record.BBox.push_back(box[i].GetReal());
    const CPDFDictionary measure = document.GetDictionaryFromReference(viewport.GetReference("Measure"));
    ReadPairArray("Bounds", record.Bounds, measure, budget);
    ReadCoordSys(record.CoordSys, document, measure);
    budget.TakeText(record.CoordSys.WKT.size() + record.CoordSys.GCSType.size());
    ReadPairArray("GPTS", record.GPTS, measure, budget);
    ReadPairArray("LPTS", record.LPTS, measure, budget);
    return record;
}

void CSpatialPDFImport::ReadCoordSys(CMeasureDictionaryData::CoordSysPart& part, CPDFDocument& document,
                                     const CPDFDictionary& measure) {
    const CPDFDictionary system = document.GetDictionaryFromReference(measure.GetReference("GCS"));
    part.GCSType = system.GetName("Type").ToQString().toStdString();
    if (system.HasKey("WKT")) part.WKT = system.GetString("WKT").ToStdString();
    part.EPSG = system.HasKey("EPSG") ? static_cast<std::int32_t>(system.GetNumber("EPSG"))
                                      : CMeasureDictionaryData::kNoEPSG;
}

void CSpatialPDFImport::ReadPairArray(const QString& key, std::vector<CMeasureDictionaryData::Pair>& pairs,
                                      const CPDFDictionary& dictionary, ReadingBudget& budget) {
    const CPDFArray numbers = dictionary.GetArray(key);
    budget.Take(numbers.GetSize());
    for (int i = 0; i < numbers.GetSize(); i += 2)
        pairs.emplace_back(ElementAt(numbers, i).GetReal(), ElementAt(numbers, i + 1).GetReal());
}

}  // namespace VellumLib
