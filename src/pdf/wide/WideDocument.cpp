#include "wide/WideDocument.h"

#include "import/CGeoPDFImportWM.h"
#include "import/CSpatialPDFImport.h"
#include "load/FirstPageDocument.h"
#include "objects/CCorruptedPDFException.h"
#include "objects/CPDFDocument.h"
#include "objects/CPDFPage.h"

#include <Tellurion/BString.h>

namespace VellumLib {
namespace {

constexpr std::size_t kBoxNumbers = 4;

/// What a read by the rules stores a reference from.
struct RuledMap {
    bool lgi = false;
    std::size_t entry = 0;
};

bool CanBeStored(const CMeasureDictionaryData& record) {
    return record.BBox.size() >= kBoxNumbers && record.GPTS.size() == record.LPTS.size() &&
           !(record.CTM.empty() && record.GPTS.empty());
}

std::optional<RuledMap> ReadViewportByRules(CPDFDocument& document, const CPDFArray& viewports) {
    CSpatialPDFImport import(&document, QString(), 0);
    import.Import();
    if (!CanBeStored(import.GetMeasures().at(0))) return std::nullopt;
    int first = 0;
    while (!viewports[first].IsDictionary())
        ++first;
    return RuledMap{false, static_cast<std::size_t>(first)};
}

std::optional<RuledMap> ReadLGIDictByRules(CPDFDocument& document, const CPDFArray& dicts) {
    CGeoPDFImportWM import(&document);
    import.Import();
    if (!CanBeStored(import.GetMeasures().at(0))) return std::nullopt;
    return RuledMap{true, static_cast<std::size_t>(CGeoPDFImportWM::ChooseDictionary(document, dicts))};
}

std::optional<RuledMap> ReadByRules(CPDFDocument& document, CPDFPage& page) {
    const CPDFDictionary dictionary = page.GetDictionary();
    if (page.GetMediaBox().size() != kBoxNumbers) return std::nullopt;
    switch (page.GetSpatialKind()) {
        case CPDFPage::kSpatialMeasure:
            return ReadViewportByRules(document, dictionary.GetArray("VP"));
        case CPDFPage::kSpatialLGIDict:
            return ReadLGIDictByRules(document, dictionary.GetArray("LGIDict"));
        default:
            return std::nullopt;
    }
}

/// True of a failure that a search for objects can do nothing about.
bool IsFinal(PoDoFo::EPdfError code) {
    return code == PoDoFo::ePdfError_InvalidPassword || code == PoDoFo::ePdfError_FileNotFound ||
           code == PoDoFo::ePdfError_InvalidHandle;
}

std::unique_ptr<CPDFDocument> OpenBySearch(const std::string& path, WideRemarks& remarks) {
    auto document = LoadBySearch(path);
    if (!document) return nullptr;
    remarks.Beyond(
        "file-structure",
        "The cross-references of the file are damaged; its objects were searched for in its bytes.");
    return std::make_unique<CPDFDocument>(std::move(document));
}

std::unique_ptr<CPDFDocument> Open(const std::string& path, bool first_page_alone,
                                   const std::string& password, WideRemarks& remarks) {
    const QString name = QString::fromStdWString(Tellurion::BString(path).WideStr());
    if (!first_page_alone) return std::make_unique<CPDFDocument>(name, EPDFExtent::Whole);
    try {
        return std::make_unique<CPDFDocument>(name, EPDFExtent::FirstPageAsShown, password);
    } catch (const PoDoFo::PdfError& error) {
        if (!IsFinal(error.GetError()))
            if (auto found = OpenBySearch(path, remarks)) return found;
        throw;
    } catch (const CCorruptedPDFException&) {
        if (auto found = OpenBySearch(path, remarks)) return found;
        throw;
    }
}

}  // namespace

WideDocument::WideDocument(const std::string& utf8_path, bool first_page_alone, const std::string& password)
    : owned_(Open(utf8_path, first_page_alone, password, remarks_)), document_(*owned_) {
    if (WasUnlocked(document_.Document()))
        remarks_.Beyond("not-encrypted", "The file is encrypted; the password has opened it.");
    FindPages();
}

WideDocument::WideDocument(CPDFDocument& document) : document_(document) {
    FindPages();
}

void WideDocument::FindPages() {
    PoDoFo::PdfMemDocument& document = document_.Document();
    pages_ = std::make_unique<WidePages>(WideValue(document.GetObjects(), document.GetCatalog()));
}

WideDocument::~WideDocument() = default;

std::vector<WideMap> WideDocument::MapsOf(const WidePage& page) {
    std::vector<WideMap> maps = ReadViewports(page);
    for (WideMap& map : ReadLGIDicts(page))
        maps.push_back(std::move(map));
    return maps;
}

std::optional<std::size_t> WideDocument::MapOfRules(const WidePage& first, const std::vector<WideMap>& maps) {
    try {
        CPDFPage& page = document_.GetPage(0);
        if (page.GetDictionary().Object() != first.dictionary.Object()) return std::nullopt;
        const std::optional<RuledMap> ruled = ReadByRules(document_, page);
        for (std::size_t i = 0; ruled && i < maps.size(); ++i)
            if (maps[i].lgi == ruled->lgi && maps[i].entry == ruled->entry) return i;
    } catch (const PoDoFo::PdfError&) {  // refused by the rules
    } catch (const std::exception&) {
    }
    return std::nullopt;
}

std::size_t LargestMap(const std::vector<WideMap>& maps) {
    std::size_t best = 0;
    for (std::size_t i = 1; i < maps.size(); ++i) {
        if (!maps[i].fault.empty()) continue;
        if (!maps[best].fault.empty() || maps[i].area > maps[best].area) best = i;
    }
    return best;
}

std::size_t DefaultMap(const std::vector<WideMap>& maps, std::optional<std::size_t> of_rules) {
    if (of_rules && maps[*of_rules].fault.empty()) return *of_rules;
    return LargestMap(maps);
}

}  // namespace VellumLib
