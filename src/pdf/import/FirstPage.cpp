#include "PdfFunctions.h"

#include "import/ArrayAccess.h"
#include "import/CGeoPDFImportWM.h"
#include "import/CSpatialPDFImport.h"
#include "import/PageBoxes.h"
#include "import/PdfFailure.h"
#include "import/ReadingBudget.h"
#include "import/RefusedForm.h"
#include "objects/CPDFDocument.h"
#include "objects/CPDFPage.h"
#include "objects/CPDFString.h"

#include <MapAnchor/BGeoPDFPage.h>
#include <Tellurion/BCoordSys.h>

#include <algorithm>
#include <cmath>
#include <memory>

namespace MapAnchor {

using Tellurion::BCoordSys;
using Tellurion::BString;
using VellumLib::CGeoPDFImportWM;
using VellumLib::CMeasureDictionaryData;
using VellumLib::CPDFArray;
using VellumLib::CPDFDictionary;
using VellumLib::CPDFDocument;
using VellumLib::CPDFObject;
using VellumLib::CPDFPage;
using VellumLib::CSpatialPDFImport;
using VellumLib::ReadingBudget;

namespace {

/// A page with more than these is not a map that a person made.
constexpr int kMostMaps = 1000;

BGeoPDFBox BoxOf(const std::vector<double>& numbers) {
    if (numbers.size() != 4) return {};
    return {numbers[0], numbers[1], numbers[2], numbers[3], true};
}

double AreaOf(const BGeoPDFBox& box) {
    return std::fabs((box.Right - box.Left) * (box.Top - box.Bottom));
}

BString NameOf(const CMeasureDictionaryData::CoordSysPart& part) {
    std::unique_ptr<BCoordSys> system(part.WKT.empty() ? nullptr : BCoordSys::FromWKT(BString(part.WKT)));
    if (!system && part.EPSG > 0) system.reset(BCoordSys::FromEPSGCode(BString::Format("%d", part.EPSG)));
    if (!system) return {};
    const BString code = system->ToEPSGCode();
    return code.IsEmpty() ? system->GetName() : system->GetName() + BString(", ") + code;
}

/// Runs `work`; empty, or the words of what it threw.
template <class Work>
BString FaultOf(Work work) {
    try {
        work();
        return {};
    } catch (...) {
        return VellumLib::CurrentPdfFailure();
    }
}

BGeoPDFMap MapOfViewport(CPDFDocument& document, const CPDFDictionary& viewport, ReadingBudget& budget) {
    BGeoPDFMap map;
    map.Fault = FaultOf([&] {
        if (viewport.HasKey("Name")) map.Name = BString(viewport.GetString("Name").ToStdString());
        budget.TakeText(map.Name.GetLength());
        const CMeasureDictionaryData record = CSpatialPDFImport::ReadViewport(document, viewport, budget);
        map.Box = BoxOf(record.BBox);
        map.Area = AreaOf(map.Box);
        map.CoordSys = NameOf(record.CoordSys);
    });
    return map;
}

BGeoPDFMap MapOfLGIDict(CPDFDocument& document, const CPDFArray& array, int index, ReadingBudget& budget) {
    BGeoPDFMap map;
    map.Fault = FaultOf([&] {
        const CPDFDictionary dictionary = CGeoPDFImportWM::DictionaryAt(document, array, index);
        map.Area = VellumLib::NeatlineArea(CGeoPDFImportWM::NeatlineOf(dictionary, budget));
        CGeoPDFImportWM import(&document, dictionary, budget);
        map.Name = BString(import.GetDescription());
        budget.TakeText(map.Name.GetLength());
        try {
            import.Import();
        } catch (...) {
            budget = import.GetBudget();
            throw;
        }
        budget = import.GetBudget();
        const CMeasureDictionaryData& record = import.GetMeasures().at(0);
        map.Box = BoxOf(record.BBox);
        map.CoordSys = NameOf(record.CoordSys);
    });
    return map;
}

void ListViewports(CPDFDocument& document, const CPDFDictionary& dictionary, BGeoPDFPage& page) {
    const CPDFArray viewports = dictionary.GetArray("VP");
    const int count = std::min(viewports.GetSize(), kMostMaps);
    ReadingBudget budget;
    for (int i = 0; i < count; ++i) {
        const CPDFObject entry = viewports[i];
        if (!entry.IsDictionary()) continue;
        page.Maps.push_back(MapOfViewport(document, entry.GetDictionary(), budget));
    }
    if (!page.Maps.empty()) page.Maps.front().InUse = true;
}

void ListLGIDicts(CPDFDocument& document, const CPDFDictionary& dictionary, BGeoPDFPage& page) {
    const CPDFArray array = dictionary.GetArray("LGIDict");
    const int count = std::min(array.GetSize(), kMostMaps);
    ReadingBudget budget;
    for (int i = 0; i < count; ++i)
        page.Maps.push_back(MapOfLGIDict(document, array, i, budget));
    if (page.Maps.empty()) return;
    const auto chosen = static_cast<std::size_t>(CGeoPDFImportWM::ChooseDictionary(document, array));
    if (chosen < page.Maps.size()) page.Maps[chosen].InUse = true;
}

void DescribeBoxes(CPDFPage& source, BGeoPDFPage& page) {
    const PageBoxes boxes = PageBoxes::Of(source);
    page.MediaBox = BoxOf(boxes.media);
    page.CropBox = BoxOf(boxes.crop);
    page.BleedBox = BoxOf(boxes.bleed);
    page.TrimBox = BoxOf(boxes.trim);
    page.ArtBox = BoxOf(boxes.art);
}

void DescribeMaps(CPDFDocument& document, CPDFPage& source, BGeoPDFPage& page) {
    const CPDFDictionary dictionary = source.GetDictionary();
    const auto kind = source.GetSpatialKind();
    page.Loaded = true;
    switch (kind) {
        case CPDFPage::kSpatialMeasure:
            page.Dialect = BGeoPDFPage::EDialect::Measure;
            return ListViewports(document, dictionary, page);
        case CPDFPage::kSpatialLGIDict:
            page.Dialect = BGeoPDFPage::EDialect::LGIDict;
            return ListLGIDicts(document, dictionary, page);
        default:
            page.Fault = "No Geospatial data found within PDF Document";
    }
}

/// The importer's own words come first: a read would end with them.
BString FaultOfRead(CPDFDocument& document, const BGeoPDFPage& page) {
    return FaultOf([&] {
        if (page.Dialect == BGeoPDFPage::EDialect::Measure)
            CSpatialPDFImport(&document, QString(), 0).Import();
        if (page.Dialect == BGeoPDFPage::EDialect::LGIDict) CGeoPDFImportWM(&document).Import();
    });
}

void Describe(CPDFDocument& document, BGeoPDFPage& page) {
    CPDFPage& source = document.GetPage(0);
    page.Rotate = source.GetRotation();
    page.UserUnit = source.GetUserUnit();
    const BString maps = FaultOf([&] { DescribeMaps(document, source, page); });
    if (page.Fault.IsEmpty()) page.Fault = maps;
    if (page.Fault.IsEmpty()) page.Fault = FaultOfRead(document, page);
    const BString boxes = FaultOf([&] { DescribeBoxes(source, page); });
    if (page.Fault.IsEmpty()) page.Fault = boxes;
}

}  // namespace

BGeoPDFPage DescribeFirstPage(const BString& file) {
    BGeoPDFPage page;
    const BString fault = FaultOf([&] {
        CPDFDocument document(QString::fromStdWString(file.WideStr()), VellumLib::EPDFExtent::FirstPage);
        Describe(document, page);
        if (!page.Fault.IsEmpty() || !page.MediaBox.Present)
            page.Explanation = BString(VellumLib::ExplainRefusedForm(document));
    });
    if (page.Fault.IsEmpty()) page.Fault = fault;
    page.Encrypted = page.Fault == VellumLib::EncryptedText();
    return page;
}

}  // namespace MapAnchor
