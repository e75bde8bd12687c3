#include "wide/ReadWideGeoPDF.h"

#include "PdfParameters.h"
#include "common/points/SourceDistance.h"
#include "import/GeoPDFSteps.h"
#include "wide/ExactFit.h"
#include "wide/GradSystem.h"
#include "wide/MapChoice.h"
#include "wide/ShownPage.h"
#include "wide/WideDocument.h"

#include <MapAnchor/BGeoReferenceReadException.h>
#include <MapAnchor/BReadParametersException.h>
#include <Tellurion/BFileContentNotValidException.h>
#include <Tellurion/Numbers.h>
#include <Tellurion/ThreadLog.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <utility>

namespace MapAnchor {

using Tellurion::BCoordSys;
using Tellurion::BGeoReference;
using Tellurion::BParamList;
using Tellurion::BPoint;
using Tellurion::BString;
using Tellurion::EMathTransformType;
using VellumLib::CMeasureDictionaryData;
using VellumLib::WideDocument;
using VellumLib::WideMap;
using VellumLib::WidePage;
using VellumLib::WideRemarks;

namespace {

constexpr const char* kSource = "BRefGeoPDF::Read";

bool IsSet(const BParamList* params, const char* key) {
    return params && params->GetInteger(key, 0) != 0;
}

/// The box that the raster shows: a box that the page lacks is its crop or media box.
std::optional<WidePage::Box> BoxOf(const WidePage& page, PDFCropType type) {
    const auto either = [](const auto& first, const auto& second) { return first ? first : second; };
    const auto whole = either(page.media, page.crop);
    switch (type) {
        case PDFCropType::Art:
            return either(page.art, either(page.crop, whole));
        case PDFCropType::Bleed:
            return either(page.bleed, either(page.crop, whole));
        case PDFCropType::Crop:
            return either(page.crop, whole);
        default:
            return whole;
    }
}

/// As renderers do it: a crop box counts as far as it is within the media box.
WidePage::Box ShownPart(const WidePage& page, WidePage::Box box) {
    if (!page.media) return box;
    const WidePage::Box& media = *page.media;
    const WidePage::Box part = {std::max(box[0], media[0]), std::max(box[1], media[1]),
                                std::min(box[2], media[2]), std::min(box[3], media[3])};
    return part[0] < part[2] && part[1] < part[3] ? part : box;
}

long Pixels(double points) {
    constexpr double kMost = 0x7FFFFFFF;
    return static_cast<long>(std::clamp(std::round(points), 1.0, kMost));
}

ShownPage Show(const WidePage& page, const BParamList* params, WideReading& reading) {
    const bool shown = IsSet(params, PdfParameters::kShown);
    const PDFCropType type = CropTypeOf(params, shown ? PDFCropType::Crop : PDFCropType::Media);
    std::optional<WidePage::Box> box = BoxOf(page, type);
    if (!box) ThrowNoBoxes();
    if (shown) box = ShownPart(page, *box);
    const double across = (*box)[2] - (*box)[0];
    const double up = (*box)[3] - (*box)[1];
    if (!std::isnormal(across) || !std::isnormal(up)) ThrowNoBoxes();
    const int degrees = shown ? page.rotate : 0;
    const bool on_its_side = degrees % 180 != 0;
    if (reading.width <= 0 || reading.height <= 0) {
        reading.width = Pixels((on_its_side ? up : across) * page.user_unit);
        reading.height = Pixels((on_its_side ? across : up) * page.user_unit);
    }
    return {*box, degrees, reading.width, reading.height};
}

/// The text first, then the code, which counts here even where the text is broken.
SystemSearch FindSystem(BGeoReference& reference, const CMeasureDictionaryData::CoordSysPart& part,
                        OnFailure on_failure, WideRemarks& remarks) {
    if (part.WKT.empty() || part.EPSG <= 0) return StoreCoordSys(reference, part, on_failure);
    CMeasureDictionaryData::CoordSysPart either = part;
    either.EPSG = CMeasureDictionaryData::kNoEPSG;
    SystemSearch search = StoreCoordSys(reference, either, OnFailure::GoOn);
    if (search.system) return search;
    either = part;
    either.WKT.clear();
    search = StoreCoordSys(reference, either, on_failure);
    if (search.system)
        remarks.Beyond("system-text",
                       "The \"WKT\" of the coordinate system cannot be read; its code is used in its place.");
    return search;
}

/// Some writers put northing and easting where latitude and longitude belong.
bool AreGroundPositions(const CMeasureDictionaryData& record, const BCoordSys& system) {
    constexpr double kMostLatitude = 91.0;
    constexpr double kMostLongitude = 361.0;
    if (system.GetKind() != BCoordSys::kKindProjected) return false;
    return std::ranges::any_of(record.GPTS, [](const auto& pair) {
        return std::fabs(pair.first) > kMostLatitude || std::fabs(pair.second) > kMostLongitude;
    });
}

BPoint WorldOf(const CMeasureDictionaryData& record, std::size_t index, const BCoordSys* system,
               double degrees) {
    const auto& [first, second] = record.GPTS[index];
    if (record.GPTSInCoordSys) return {second, first, 0.0};
    return system->ConvertFromGeodetic({second * degrees, first * degrees, 0.0});
}

std::vector<WidePoint> PointsOf(const CMeasureDictionaryData& record, const ShownPage& shown,
                                const BCoordSys* system, double degrees) {
    const std::vector<double>& box = record.BBox;
    std::vector<WidePoint> points;
    points.reserve(record.GPTS.size());
    for (std::size_t i = 0; i < record.GPTS.size(); ++i) {
        const auto& [right, up] = record.LPTS[i];
        const ShownPage::Pixel pixel =
            shown.PixelAt(box[0] + right * (box[2] - box[0]), box[1] + up * (box[3] - box[1]));
        points.push_back({pixel.column, pixel.row, WorldOf(record, i, system, degrees)});
        if (!IsCountable(points.back())) ThrowUncountable(i);
    }
    return points;
}

/// Stores the reference of the map; false without a system to convert positions to.
bool Store(WideMap& map, const ShownPage& shown, BGeoReference& reference, Strictness strictness,
           EMathTransformType mathType, WideReading& reading) {
    CMeasureDictionaryData& record = map.record;
    const SystemSearch search = FindSystem(reference, record.CoordSys, strictness.CoordSys(), map.remarks);
    if (search.failed) return false;
    if (!record.CTM.empty()) {
        StorePageAffine(reference, shown.AffineOf(record.CTM), strictness.Transform());
        return true;
    }
    if (record.GPTS.empty()) ThrowNoPoints();
    const BCoordSys* system = search.system.Get();
    if (!record.GPTSInCoordSys && !system) return false;
    if (!record.GPTSInCoordSys && AreGroundPositions(record, *system)) {
        record.GPTSInCoordSys = true;
        map.remarks.Beyond("gpts-degrees",
                           "\"GPTS\" is expected to hold latitudes and longitudes; here it "
                           "holds northings and eastings.");
    }
    const bool grads = !record.GPTSInCoordSys && CountsInGrads(*system);
    if (grads)
        map.remarks.Beyond("gpts-degrees",
                           "\"GPTS\" is expected to hold degrees; here it is read in grads, "
                           "in which the coordinate system counts.");
    reading.points = PointsOf(record, shown, system, grads ? kDegreesOfGrad : 1.0);
    StoreExactPoints(reference, reading.points, mathType, {reading.width, reading.height},
                     strictness.Transform(), map.remarks);
    return true;
}

bool Overlap(const std::vector<double>& a, const std::vector<double>& b) {
    constexpr std::size_t kNumbers = 4;
    if (a.size() < kNumbers || b.size() < kNumbers) return false;
    const auto apart = [&](std::size_t low, std::size_t high) {
        return std::max(a[low], a[high]) <= std::min(b[low], b[high]) ||
               std::max(b[low], b[high]) <= std::min(a[low], a[high]);
    };
    return !apart(0, 2) && !apart(1, 3);
}

/// How far another dialect puts the raster from `reference`; 0 where the systems are not known.
SourceDistance DistanceOf(WideMap other, const ShownPage& shown, const BGeoReference& reference,
                          const WideReading& reading) {
    WideReading ignored;
    ignored.width = reading.width;
    ignored.height = reading.height;
    BGeoReference placed;
    const Tellurion::ThreadLog quiet;
    Store(other, shown, placed, Strictness(0), EMathTransformType::Affine, ignored);
    if (!placed.HasCoordSys() || !reference.HasCoordSys()) return {0.0, 0.0};
    return DistanceBetween({reference}, {placed}, reading.width, reading.height);
}

struct DialectDifference {
    double pixels;
    double metres;
};

/// How far the map of the other dialect at the same place of the page puts the raster elsewhere;
/// nothing where there is none, or no difference that counts.
std::optional<DialectDifference> CompareDialects(const std::vector<WideMap>& maps, std::size_t chosen,
                                                 const ShownPage& shown, const BGeoReference& reference,
                                                 const WideReading& reading) {
    for (const WideMap& other : maps) {
        if (other.lgi == maps[chosen].lgi || !other.fault.empty() ||
            !Overlap(other.record.BBox, maps[chosen].record.BBox))
            continue;
        try {
            const SourceDistance distance = DistanceOf(other, shown, reference, reading);
            constexpr double kSamePixels = 1.0;
            if (!(distance.pixels > kSamePixels)) return std::nullopt;
            return DialectDifference{distance.pixels, distance.metres};
        } catch (...) {  // it cannot be placed, and so not be compared
            return std::nullopt;
        }
    }
    return std::nullopt;
}

std::string TextOf(const DialectDifference& difference, bool read_lgi) {
    std::string text = "the page states the place of the map twice, and \"";
    text.append(read_lgi ? "VP" : "LGIDict").append("\" puts it elsewhere");
    if (std::isfinite(difference.metres))
        text.append(": ").append(Tellurion::PrintFixed(difference.metres, 1)).append(" m away");
    else if (std::isfinite(difference.pixels))
        text.append(": ").append(Tellurion::PrintFixed(difference.pixels, 1)).append(" pixels away");
    return text.append("; \"").append(read_lgi ? "LGIDict" : "VP").append("\" is read");
}

}  // namespace

bool IsWideRead(const BParamList* params) {
    return IsSet(params, PdfParameters::kWide);
}

WideReading ReadWideGeoPDF(const BString& file, unsigned int flags, BGeoReference& reference,
                           EMathTransformType mathType, long width, long height, const BParamList* params) {
    WideDocument document(file.StdStr(), PageOf(params) == 1, PasswordOf(params));
    return ReadWideGeoPDF(document, flags, reference, mathType, width, height, params);
}

WideReading ReadWideGeoPDF(WideDocument& document, unsigned int flags, BGeoReference& reference,
                           EMathTransformType mathType, long width, long height, const BParamList* params) {
    WideReading reading;
    reading.width = width;
    reading.height = height;
    reading.page = PageOf(params);
    WidePage page = PageAt(document.Pages(), reading.page);
    std::vector<WideMap> maps = WideDocument::MapsOf(page);
    if (maps.empty())
        throw Tellurion::BFileContentNotValidException(kSource,
                                                       "No Geospatial data found within PDF Document");
    const std::size_t chosen = ChooseMap(document, page, reading.page, maps, params);
    WideMap& map = maps[chosen];
    reading.map = static_cast<long>(chosen) + 1;
    reading.map_name = BString(map.name);
    if (!map.fault.empty()) throw BGeoReferenceReadException(kSource, BString(map.fault));
    map.remarks.Append(document.Remarks());
    map.remarks.Append(page.remarks);
    const ShownPage shown = Show(page, params, reading);
    if (!Store(map, shown, reference, Strictness(flags), mathType, reading))
        map.remarks.Doubt("pdf-no-system", "The coordinate system of the map cannot be read.");
    if (reference.HasMathTransform())
        if (const auto difference = CompareDialects(maps, chosen, shown, reference, reading))
            map.remarks.Doubt("pdf-dialects-differ", TextOf(*difference, map.lgi));
    reading.remarks = map.remarks.List();
    reading.origins = std::move(map.origins);
    return reading;
}

}  // namespace MapAnchor
