#include "import/CGeoPDFImportWM.h"

#include "import/ArrayAccess.h"
#include "import/ReadingBudget.h"
#include "objects/CPDFArray.h"
#include "objects/CPDFDocument.h"
#include "objects/CPDFName.h"
#include "objects/CPDFObject.h"
#include "objects/CPDFPage.h"
#include "objects/CPDFString.h"

namespace VellumLib {
namespace {

QString KeyOf(const std::string& key) {
    return QString::fromStdString(key);
}

}  // namespace

CGeoPDFImportWM::CGeoPDFImportWM(CPDFDocument* document) : Document(document) {
    const CPDFDictionary page = Document->GetPage(0).GetDictionary();
    if (!page.HasKey("LGIDict")) return;
    const CPDFArray array = page.GetArray("LGIDict");
    ElementAt(array, 0);
    Select(DictionaryAt(*Document, array, ChooseDictionary(*Document, array)));
}

CGeoPDFImportWM::CGeoPDFImportWM(CPDFDocument* document, const CPDFDictionary& dictionary,
                                 const ReadingBudget& budget)
    : Document(document), Budget(budget) {
    Select(dictionary);
}

void CGeoPDFImportWM::Select(const CPDFDictionary& dictionary) {
    LGIDict = dictionary;
    if (LGIDict.HasKey("Description")) Description = LGIDict.GetString("Description").ToStdString();
}

CPDFDictionary CGeoPDFImportWM::DictionaryAt(CPDFDocument& document, const CPDFArray& array, int index) {
    const CPDFObject element = ElementAt(array, index);
    if (element.IsDictionary()) return element.GetDictionary();
    if (element.IsReference())
        return document.GetDictionaryFromReference(element.GetObjectNumber(), element.GetGenerationNumber());
    return {};
}

int CGeoPDFImportWM::ChooseDictionary(CPDFDocument& document, const CPDFArray& array) {
    const int count = array.GetSize();
    int best = 0;
    double best_area = 0.0;
    ReadingBudget budget;
    for (int i = 0; count > 1 && i < count; ++i) {
        const double area = NeatlineArea(NeatlineOf(DictionaryAt(document, array, i), budget));
        if (!(area > best_area)) continue;
        best = i;
        best_area = area;
    }
    return best;
}

std::vector<CMeasureDictionaryData::Pair> CGeoPDFImportWM::NeatlineOf(const CPDFDictionary& dictionary,
                                                                      ReadingBudget& budget) {
    std::vector<CMeasureDictionaryData::Pair> points;
    if (!dictionary.HasKey("Neatline")) return points;
    const CPDFArray array = dictionary.GetArray("Neatline");
    budget.Take(array.GetSize());
    for (int i = 0; i < array.GetSize(); i += 2)
        points.emplace_back(NumberInString(array, i, budget), NumberInString(array, i + 1, budget));
    return points;
}

void CGeoPDFImportWM::ReadCTM() {
    if (!LGIDict.HasKey("CTM")) return;
    const CPDFArray array = LGIDict.GetArray("CTM");
    Budget.Take(array.GetSize());
    for (int i = 0; i < array.GetSize(); ++i)
        CTM.push_back(NumberInString(array, i, Budget));
}

void CGeoPDFImportWM::ReadRegistration() {
    if (!LGIDict.HasKey("Registration")) return;
    const CPDFArray array = LGIDict.GetArray("Registration");
    Budget.Take(array.GetSize());
    for (int i = 0; i < array.GetSize(); ++i) {
        const CPDFArray entry = array[i].GetArray();
        Registration.push_back({.PageX = NumberInString(entry, 0, Budget),
                                .PageY = NumberInString(entry, 1, Budget),
                                .WorldY = NumberInString(entry, 3, Budget),
                                .WorldX = NumberInString(entry, 2, Budget)});
    }
}

void CGeoPDFImportWM::ReadProjection() {
    const CPDFDictionary projection = LGIDict.GetDictionary("Projection");
    Parameters[kType] = projection.GetName(KeyOf(ParameterKeys.at(kType))).ToQString().toStdString();
    Parameters[kProjectionType] =
        projection.GetString(KeyOf(ParameterKeys.at(kProjectionType))).ToStdString();
    for (int number = kUnits; number < kLGIParameterCount; ++number) {
        const QString key = KeyOf(ParameterKeys.at(number));
        if (!projection.HasKey(key)) continue;
        Parameters[number] = number == kZone ? std::to_string(projection.GetNumber(key))
                                             : projection.GetString(key).ToStdString();
    }
}

void CGeoPDFImportWM::ReadNeatline() {
    Neatline = NeatlineOf(LGIDict, Budget);
}

/// The far corner of the media box; where the box begins is not subtracted.
void CGeoPDFImportWM::ReadPageSize() {
    const std::vector<double> box = Document->GetPage(0).GetMediaBox();
    if (box.size() < 4) return;
    PageWidth = box[2];
    PageHeight = box[3];
}

}  // namespace VellumLib
