#include "raster/gdal/SecondReading.h"

#include "raster/gdal/CoordEpoch.h"
#include "raster/gdal/GdalRaster.h"
#include "raster/gdal/VerticalUnit.h"
#include "raster/gdal/XmlTree.h"

#include <Tellurion/BException.h>
#include <Tellurion/BFileUtilities.h>
#include <Tellurion/QuietGdal.h>
#include <Tellurion/RandomAccessFile.h>

#include <cpl_conv.h>
#include <cpl_vsi.h>
#include <gdal_priv.h>

#include <array>
#include <atomic>
#include <memory>
#include <string_view>

namespace MapAnchor {

using namespace Tellurion;

namespace {

using Terms = std::array<double, 6>;  // in GDAL's order

void StoreTerms(const Terms& t, SecondReading& out) {
    constexpr bool kOptimizeFor2D = true;
    const std::unique_ptr<BMathTransform> transform(
        BMathTransform::CreateAffine(t[1], t[2], t[0], t[4], t[5], t[3], kOptimizeFor2D));
    if (transform) out.reference.SetMathTransform(*transform);
}

void StoreSystem(const BString& text, SecondReading& out) {
    if (text.IsEmpty()) return;
    try {
        if (BCoordSys* const system = BCoordSys::FromWKT(text))
            out.reference.SetCoordSys(BSharedPtr<BCoordSys>(system));
    } catch (const BException&) {
        // A text that is not understood is no system, which the comparison reports.
    }
}

void StorePoints(const GDAL_GCP* points, int count, SecondReading& out) {
    for (int i = 0; i < count; ++i) {
        BControlPoint point;
        point.Name = points[i].pszId ? points[i].pszId : "";
        point.Column = points[i].dfGCPPixel;
        point.Row = points[i].dfGCPLine;
        point.World = BPoint(points[i].dfGCPX, points[i].dfGCPY, points[i].dfGCPZ);
        out.points.push_back(point);
    }
}

SecondReading ReadingOf(GDALDataset& raster) {
    SecondReading out;
    out.width = raster.GetRasterXSize();
    out.height = raster.GetRasterYSize();
    if (const GDALDriver* const driver = raster.GetDriver()) out.reader = driver->GetDescription();
    Terms terms{};
    if (raster.GetGCPCount() > 0) {
        StorePoints(raster.GetGCPs(), raster.GetGCPCount(), out);
        StoreSystem(TextOf(raster.GetGCPSpatialRef()), out);
    } else {
        if (raster.GetGeoTransform(terms.data()) == CE_None) StoreTerms(terms, out);
        StoreSystem(TextOf(raster.GetSpatialRef()), out);
    }
    if (const auto unit = ReadVerticalUnit(raster)) out.reference.SetVerticalUnit(unit);
    return out;
}

std::optional<SecondReading> ReadWorldFile(const BString& file) {
    Terms terms{};
    if (GDALLoadWorldFile(file.Utf8(), terms.data()) == FALSE) return std::nullopt;
    SecondReading out;
    out.reader = "world file";
    out.states_system = false;
    StoreTerms(terms, out);
    return out;
}

std::optional<SecondReading> ReadTab(const BString& file) {
    Terms terms{};
    char* text = nullptr;
    int count = 0;
    GDAL_GCP* points = nullptr;
    const bool has_transform = GDALLoadTabFile(file.Utf8(), terms.data(), &text, &count, &points) != FALSE;
    SecondReading out;
    out.reader = "TAB";
    StoreSystem(BString(text ? text : ""), out);
    StorePoints(points, count, out);
    GDALDeinitGCPs(count, points);
    CPLFree(points);
    CPLFree(text);
    if (!has_transform && count == 0) return std::nullopt;
    if (has_transform && count == 0) StoreTerms(terms, out);
    return out;
}

/// A header in memory with an empty raster: GDAL reads a header with its raster alone, which
/// may be of another kind or not be there.
class HeaderInMemory {
public:
    explicit HeaderInMemory(const BString& file) {
        static std::atomic<unsigned> number{0};
        constexpr std::size_t kMaxLength = std::size_t{1} << 20;
        folder_ = "/vsimem/mapanchor-" + std::to_string(number++) + "-ers/";
        header_ = RandomAccessFile(file).Window(0, kMaxLength);
        Replace("DataFile", "\"raster\"");
        Replace("DataSetType", "ERStorage");  // of a translated raster GDAL opens another file
        VSIFCloseL(VSIFileFromMemBuffer((folder_ + "raster").c_str(), nullptr, 0, FALSE));
        VSIFCloseL(VSIFileFromMemBuffer(Name().c_str(), reinterpret_cast<GByte*>(header_.data()),
                                        header_.size(), FALSE));
    }
    ~HeaderInMemory() { VSIRmdirRecursive(folder_.c_str()); }
    HeaderInMemory(const HeaderInMemory&) = delete;
    HeaderInMemory& operator=(const HeaderInMemory&) = delete;

    std::string Name() const { return folder_ + "raster.ers"; }

private:
    /// The rest of the first line whose tag is that.
    void Replace(std::string_view tag, std::string_view value) {
        const std::size_t at = header_.find(std::string("\t").append(tag));
        const std::size_t start = at == std::string::npos ? at : header_.find('=', at);
        if (start == std::string::npos) return;
        header_.replace(start + 1, header_.find('\n', start) - start - 1, value);
    }

    std::string folder_;
    std::string header_;
};

std::optional<SecondReading> ReadByDriver(const char* driver, const std::string& name,
                                          const char* const* options = nullptr) {
    const char* const drivers[] = {driver, nullptr};
    const GdalRaster raster(
        GDALDataset::Open(name.c_str(), GDAL_OF_RASTER | GDAL_OF_VERBOSE_ERROR, drivers, options, nullptr));
    return raster ? std::optional(ReadingOf(*raster)) : std::nullopt;
}

std::optional<SecondReading> ReadErs(const BString& file) {
    const HeaderInMemory header(file);
    std::optional<SecondReading> out = ReadByDriver("ERS", header.Name());
    if (out) out->width = out->height = 0;
    return out;
}

/// The placement of a virtual raster, without its bands: what they name is not opened.
std::optional<SecondReading> ReadVrt(const BString& file) {
    const XmlTree tree = ReadXml(file);
    CPLXMLNode* const dataset = tree ? CPLGetXMLNode(tree.get(), "=VRTDataset") : nullptr;
    if (!dataset) return std::nullopt;
    const XmlTree bare(CPLCreateXMLNode(nullptr, CXT_Element, "VRTDataset"));
    for (const char* name : {"rasterXSize", "rasterYSize"})
        CPLAddXMLAttributeAndValue(bare.get(), name, CPLGetXMLValue(dataset, name, "1"));
    for (const char* name : {"SRS", "GeoTransform", "GCPList"}) {
        CPLXMLNode* const child = CPLGetXMLNode(dataset, name);
        if (!child || !CPLRemoveXMLChild(dataset, child)) continue;
        CPLAddXMLChild(bare.get(), child);
    }
    // Without a band it is no raster.
    CPLXMLNode* const band = CPLCreateXMLNode(bare.get(), CXT_Element, "VRTRasterBand");
    CPLAddXMLAttributeAndValue(band, "dataType", "Byte");
    CPLAddXMLAttributeAndValue(band, "band", "1");
    return ReadByDriver("VRT", TextOfXml(bare.get()));
}

/// An auxiliary file beside a raster of one pixel in memory.
std::optional<SecondReading> ReadAuxiliary(const BString& file) {
    static std::atomic<unsigned> number{0};
    const std::string folder = "/vsimem/mapanchor-" + std::to_string(number++) + "-aux/";
    const std::string raster = folder + "a.tif";
    std::string text = RandomAccessFile(file).Window(0, std::size_t{16} << 20);
    if (GDALDriver* const driver = GetGDALDriverManager()->GetDriverByName("GTiff"))
        const GdalRaster made(driver->Create(raster.c_str(), 1, 1, 1, GDT_Byte, nullptr));
    VSIFCloseL(VSIFileFromMemBuffer((raster + ".aux.xml").c_str(), reinterpret_cast<GByte*>(text.data()),
                                    text.size(), FALSE));
    std::optional<SecondReading> out = ReadByDriver("GTiff", raster);
    if (out) out->width = out->height = 0;
    VSIRmdirRecursive(folder.c_str());
    return out;
}

/// Larger pages would make GDAL's raster larger than it takes.
std::optional<SecondReading> ReadPdf(const BString& file) {
    const char* const options[] = {"DPI=72", nullptr};
    return ReadByDriver("PDF", file.StdStr(), options);
}

std::optional<SecondReading> ReadRaster(const BString& file) {
    const GdalRaster raster = OpenRaster(file);
    return raster ? std::optional(ReadingOf(*raster)) : std::nullopt;
}

template <class Read>
std::optional<SecondReading> Listen(Read read, std::string& refusal) {
    const QuietGdal quiet;
    std::optional<SecondReading> out = read();
    refusal = quiet.FirstFailure();
    if (!out && refusal.empty()) refusal = "GDAL reports no reason";
    return out;
}

}  // namespace

std::optional<SecondReading> ReadByGdalAlone(const ReferenceFormat& kind, const BString& file,
                                             std::string& refusal) {
    const std::string_view name = kind.name;
    refusal.clear();
    if (name == "TIF") return Listen([&] { return ReadRaster(file); }, refusal);
    if (name == "WLD") return Listen([&] { return ReadWorldFile(file); }, refusal);
    if (name == "TAB") return Listen([&] { return ReadTab(file); }, refusal);
    if (name == "ERS" && HasGdalDriver("ERS")) return Listen([&] { return ReadErs(file); }, refusal);
    if (name == "PDF" && HasGdalDriver("PDF")) return Listen([&] { return ReadPdf(file); }, refusal);
    if (name == "VRT" && HasGdalDriver("VRT")) return Listen([&] { return ReadVrt(file); }, refusal);
    if (name == "AUX" && HasGdalDriver("GTiff")) return Listen([&] { return ReadAuxiliary(file); }, refusal);
    return std::nullopt;
}

std::optional<SecondReading> ReadRasterByGdalAlone(const BString& raster, std::string& refusal) {
    return Listen([&] { return ReadRaster(raster); }, refusal);
}

}  // namespace MapAnchor
