#include "PdfFunctions.h"

#include "import/PdfFailure.h"
#include "wide/MapChoice.h"
#include "wide/WideDocument.h"

#include <MapAnchor/BGeoPDFPages.h>
#include <Tellurion/BCoordSys.h>
#include <Tellurion/BException.h>

#include <algorithm>
#include <memory>

namespace MapAnchor {

using Tellurion::BCoordSys;
using Tellurion::BException;
using Tellurion::BParamList;
using Tellurion::BString;
using VellumLib::CMeasureDictionaryData;
using VellumLib::WideDocument;
using VellumLib::WideMap;
using VellumLib::WidePage;

namespace {

constexpr std::size_t kMaxListed = 10'000;

BGeoPDFBox BoxOf(const std::optional<WidePage::Box>& box) {
    if (!box) return {};
    return {(*box)[0], (*box)[1], (*box)[2], (*box)[3], true};
}

BGeoPDFBox BoxOf(const std::vector<double>& numbers) {
    if (numbers.size() < 4) return {};
    return {std::min(numbers[0], numbers[2]), std::min(numbers[1], numbers[3]),
            std::max(numbers[0], numbers[2]), std::max(numbers[1], numbers[3]), true};
}

BString NameOf(const CMeasureDictionaryData::CoordSysPart& part) {
    std::unique_ptr<BCoordSys> system;
    try {
        if (!part.WKT.empty()) system.reset(BCoordSys::FromWKT(BString(part.WKT)));
        if (!system && part.EPSG > 0) system.reset(BCoordSys::FromEPSGCode(BString::Format("%d", part.EPSG)));
    } catch (const BException&) {
        return {};
    }
    if (!system) return {};
    const BString code = system->ToEPSGCode();
    return code.IsEmpty() ? system->GetName() : system->GetName() + BString(", ") + code;
}

BGeoPDFMap Described(const WideMap& map) {
    BGeoPDFMap described;
    described.Name = BString(map.name);
    described.Box = BoxOf(map.record.BBox);
    described.Area = map.area;
    described.CoordSys = NameOf(map.record.CoordSys);
    described.Fault = BString(map.fault);
    return described;
}

BGeoPDFNumberedPage Described(WideDocument& document, const WidePage& page, long number,
                              const std::vector<WideMap>& maps) {
    BGeoPDFNumberedPage described;
    described.Number = number;
    BGeoPDFPage& to = described.Page;
    to.Loaded = true;
    to.MediaBox = BoxOf(page.media);
    to.CropBox = BoxOf(page.crop ? page.crop : page.media);
    to.BleedBox = page.bleed ? BoxOf(page.bleed) : to.CropBox;
    to.TrimBox = page.trim ? BoxOf(page.trim) : to.CropBox;
    to.ArtBox = page.art ? BoxOf(page.art) : to.CropBox;
    to.Rotate = page.rotate;
    to.UserUnit = page.user_unit;
    for (const WideMap& map : maps)
        to.Maps.push_back(Described(map));
    if (maps.empty()) {
        to.Fault = "No Geospatial data found within PDF Document";
        return described;
    }
    const std::size_t chosen =
        VellumLib::DefaultMap(maps, number == 1 ? document.MapOfRules(page, maps) : std::nullopt);
    to.Maps[chosen].InUse = true;
    to.Dialect = maps[chosen].lgi ? BGeoPDFPage::EDialect::LGIDict : BGeoPDFPage::EDialect::Measure;
    to.Fault = BString(maps[chosen].fault);
    return described;
}

/// Runs `work`, which fills the list; a failure becomes its fault.
template <class Work>
BGeoPDFPages Filled(Work work) {
    BGeoPDFPages list;
    try {
        work(list);
    } catch (...) {
        list.Fault = VellumLib::CurrentPdfFailure();
    }
    return list;
}

}  // namespace

BGeoPDFPages ListPages(const BString& file) {
    return Filled([&](BGeoPDFPages& list) {
        WideDocument document(file.StdStr(), false);
        list.PageCount = static_cast<long>(document.Pages().Count());
        list.Complete = document.Pages().Complete();
        std::size_t listed = 0;
        for (long number = 1; number <= list.PageCount; ++number) {
            const WidePage page = PageAt(document.Pages(), number);
            const std::vector<WideMap> maps = WideDocument::MapsOf(page);
            if (maps.empty()) continue;
            list.Complete = list.Complete && listed + maps.size() <= kMaxListed;
            if (listed + maps.size() > kMaxListed) break;
            listed += maps.size();
            list.Pages.push_back(Described(document, page, number, maps));
        }
    });
}

BGeoPDFPages DescribePage(const BString& file, const BParamList* params) {
    const long number = PageOf(params);
    BGeoPDFPages list = Filled([&](BGeoPDFPages& filled) {
        WideDocument document(file.StdStr(), number == 1, PasswordOf(params));
        filled.PageCount = document.Pages().StatedCount();
        const WidePage page = PageAt(document.Pages(), number);
        const std::vector<WideMap> maps = WideDocument::MapsOf(page);
        filled.Pages.push_back(Described(document, page, number, maps));
        if (maps.empty()) return;
        BGeoPDFPage& to = filled.Pages.front().Page;
        const std::size_t chosen = ChooseMap(document, page, number, maps, params);
        for (std::size_t i = 0; i < to.Maps.size(); ++i)
            to.Maps[i].InUse = i == chosen;
        to.Fault = to.Maps[chosen].Fault;
    });
    if (list.Pages.empty()) list.Pages.push_back({number, {}});
    BGeoPDFPage& page = list.Pages.front().Page;
    if (page.Fault.IsEmpty()) page.Fault = list.Fault;
    page.Encrypted = list.Fault == VellumLib::EncryptedText();
    return list;
}

}  // namespace MapAnchor
