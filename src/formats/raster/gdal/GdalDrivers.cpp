#include "raster/gdal/GdalDrivers.h"

#include "raster/gdal/GdalRaster.h"

#include <MapAnchor/BReadParametersException.h>
#include <Tellurion/BFileUtilities.h>
#include <Tellurion/QuietGdal.h>

#include <dlfcn.h>
#include <gdal_priv.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <mutex>
#include <set>
#include <unordered_set>

namespace MapAnchor {

using Tellurion::BFileUtilities;
using Tellurion::BParamList;
using Tellurion::BString;

namespace {

enum class Reach {
    Plain,     ///< the named file, and files of the same name beside it
    Network,   ///< hosts that the file or its name mentions
    Database,  ///< a database, or a file that is one, with queries of its own
    Names,     ///< files that the file names
    Nested,    ///< hands parts of the file to whatever driver knows them
    Past,      ///< opens files past GDAL's file layer, where nothing watches it
    NoFile,    ///< no file at all
    ByType,    ///< files that have a reader of their own here
};

struct Driver {
    const char* name;
    Reach reach;
};

/// All that can read rasters, in GDAL's order.
constexpr Driver kDrivers[] = {
    {"VRT", Reach::Names},  // but see SelfContainedVrt.h
    {"DERIVED", Reach::NoFile},
    {"GTiff", Reach::Plain},
    {"NITF", Reach::Plain},
    {"RPFTOC", Reach::Names},
    {"ECRGTOC", Reach::Names},
    {"HFA", Reach::Plain},
    {"SAR_CEOS", Reach::Plain},
    {"CEOS", Reach::Plain},
    {"JAXAPALSAR", Reach::Names},
    {"GFF", Reach::Plain},
    {"ELAS", Reach::Plain},
    {"ESRIC", Reach::Names},
    {"AIG", Reach::Plain},
    {"AAIGrid", Reach::Plain},
    {"GRASSASCIIGrid", Reach::Plain},
    {"ISG", Reach::Plain},
    {"SDTS", Reach::Plain},
    {"DTED", Reach::Plain},
    {"PNG", Reach::Plain},
    {"JPEG", Reach::Plain},
    {"MEM", Reach::NoFile},
    {"JDEM", Reach::Plain},
    {"GIF", Reach::Plain},
    {"BIGGIF", Reach::Plain},
    {"ESAT", Reach::Plain},
    {"FITS", Reach::Past},
    {"BSB", Reach::Plain},
    {"XPM", Reach::Plain},
    {"BMP", Reach::Plain},
    {"DIMAP", Reach::Nested},
    {"AirSAR", Reach::Plain},
    {"RS2", Reach::Nested},
    {"SAFE", Reach::Nested},
    {"PCIDSK", Reach::Names},
    {"PCRaster", Reach::Past},
    {"ILWIS", Reach::Names},
    {"SGI", Reach::Plain},
    {"SRTMHGT", Reach::Plain},
    {"Leveller", Reach::Plain},
    {"Terragen", Reach::Plain},
    {"netCDF", Reach::Past},
    {"HDF4", Reach::Past},
    {"HDF4Image", Reach::Past},
    {"ISIS3", Reach::Nested},
    {"ISIS2", Reach::Names},
    {"PDS", Reach::Nested},
    {"PDS4", Reach::Nested},
    {"VICAR", Reach::Plain},
    {"TIL", Reach::Nested},
    {"ERS", Reach::Nested},
    {"JP2OpenJPEG", Reach::Plain},
    {"JP2KAK", Reach::Plain},
    {"JP2ECW", Reach::Plain},
    {"JP2MrSID", Reach::Plain},
    {"JP2Lura", Reach::Plain},
    {"JPEG2000", Reach::Plain},
    {"JPEGXL", Reach::Plain},
    {"ECW", Reach::Plain},
    {"MrSID", Reach::Plain},
    {"L1B", Reach::Plain},
    {"FIT", Reach::Plain},
    {"GRIB", Reach::Nested},
    {"RMF", Reach::Plain},
    {"WCS", Reach::Network},
    {"WMS", Reach::Network},
    {"MSGN", Reach::Plain},
    {"RST", Reach::Names},
    {"GSAG", Reach::Plain},
    {"GSBG", Reach::Plain},
    {"GS7BG", Reach::Plain},
    {"COSAR", Reach::Plain},
    {"TSX", Reach::Nested},
    {"COASP", Reach::Past},
    {"R", Reach::Plain},
    {"MAP", Reach::Nested},
    {"KMLSUPEROVERLAY", Reach::Nested},
    {"WEBP", Reach::Plain},
    {"PDF", Reach::ByType},
    {"Rasterlite", Reach::Database},
    {"MBTiles", Reach::Database},
    {"PLMOSAIC", Reach::Network},
    {"CALS", Reach::Nested},
    {"WMTS", Reach::Network},
    {"SENTINEL2", Reach::Nested},
    {"MRF", Reach::Names},
    {"PNM", Reach::Plain},
    {"DOQ1", Reach::Plain},
    {"DOQ2", Reach::Plain},
    {"PAux", Reach::Names},
    {"MFF", Reach::Names},
    {"MFF2", Reach::Names},
    {"GSC", Reach::Plain},
    {"FAST", Reach::Names},
    {"BT", Reach::Plain},
    {"LAN", Reach::Plain},
    {"CPG", Reach::Plain},
    {"NDF", Reach::Names},
    {"EIR", Reach::Names},
    {"DIPEx", Reach::Plain},
    {"LCP", Reach::Plain},
    {"GTX", Reach::Plain},
    {"LOSLAS", Reach::Plain},
    {"NTv2", Reach::Plain},
    {"CTable2", Reach::Plain},
    {"ACE2", Reach::Plain},
    {"SNODAS", Reach::Names},
    {"KRO", Reach::Plain},
    {"ROI_PAC", Reach::Plain},
    {"RRASTER", Reach::Plain},
    {"BYN", Reach::Plain},
    {"ARG", Reach::Plain},
    {"RIK", Reach::Plain},
    {"USGSDEM", Reach::Plain},
    {"GXF", Reach::Plain},
    {"BAG", Reach::Names},
    {"HDF5", Reach::Names},
    {"HDF5Image", Reach::Names},
    {"NWT_GRD", Reach::Plain},
    {"NWT_GRC", Reach::Plain},
    {"ADRG", Reach::Plain},
    {"SRP", Reach::Names},
    {"BLX", Reach::Plain},
    {"PostGISRaster", Reach::Database},
    {"SAGA", Reach::Plain},
    {"XYZ", Reach::Plain},
    {"HF2", Reach::Plain},
    {"OZI", Reach::Plain},
    {"CTG", Reach::Plain},
    {"ZMap", Reach::Plain},
    {"NGSGEOID", Reach::Plain},
    {"IRIS", Reach::Plain},
    {"PRF", Reach::Nested},
    {"EEDAI", Reach::Network},
    {"DAAS", Reach::Network},
    {"SIGDEM", Reach::Plain},
    {"HEIF", Reach::Plain},
    {"TGA", Reach::Plain},
    {"OGCAPI", Reach::Network},
    {"STACTA", Reach::Network},
    {"STACIT", Reach::Network},
    {"GPKG", Reach::Database},
    {"CAD", Reach::Nested},
    {"PLSCENES", Reach::Network},
    {"NGW", Reach::Network},
    {"GenBin", Reach::Plain},
    {"ENVI", Reach::Plain},
    {"EHdr", Reach::Plain},
    {"ISCE", Reach::Names},
    {"Zarr", Reach::Names},
    {"TileDB", Reach::Past},
    {"HTTP", Reach::Network},
};

struct Extension {
    const char* extensions;  ///< in small letters, each between dots
    GdalDrivers::Names drivers;
};

const Extension kExtensions[] = {
    {".tif.tiff.", {"GTiff", nullptr}},
    {".ddf.", {"SDTS", nullptr}},
    // GTOPO30 and its like are plain numbers with a header beside them.
    {".dem.", {"USGSDEM", "EHdr", "GenBin", nullptr}},
    {".dt0.dt1.dt2.dt3.dt4.dt5.", {"DTED", nullptr}},
    {".asc.", {"AAIGrid", "GRASSASCIIGrid", "XYZ", nullptr}},
    {".adf.", {"AIG", nullptr}},
    {".jp2.", {"JP2OpenJPEG", "JP2KAK", "JP2ECW", "JP2MrSID", "JP2Lura", "JPEG2000", nullptr}},
    {".sid.", {"MrSID", "JP2MrSID", "JP2OpenJPEG", nullptr}},
};

std::vector<std::string> SplitNames(const BString& names) {
    std::vector<std::string> parts(1);
    for (const char c : names.StdStr())
        if (c == ',' || c == ' ')
            parts.emplace_back();
        else
            parts.back() += c;
    std::erase(parts, "");
    return parts;
}

std::vector<std::string> RequireKnown(const BString& names) {
    std::vector<std::string> parts = SplitNames(names);
    for (const std::string& name : parts)
        if (!HasGdalDriver(name.c_str()))
            throw BReadParametersException(BString::Format("GDAL has no driver of the name <%s> here", name));
    return parts;
}

struct ProcessList {
    std::mutex mutex;
    /// All that were ever allowed stay, so that their texts outlive any read.
    std::set<std::string> texts;
    std::vector<const char*> names;
};

ProcessList& Process() {
    static auto* const list = new ProcessList;
    return *list;
}

thread_local const GdalDrivers::Scope* innermost = nullptr;

/// The file that a function was loaded from.
template <class Function>
std::string_view HomeOf(Function* function) {
    Dl_info info;
    return dladdr(reinterpret_cast<const void*>(function), &info) != 0 && info.dli_fname ? info.dli_fname
                                                                                         : "";
}

/// True for a driver of the host's own: one that is neither in GDAL's library nor in one of
/// its plug-ins.
bool IsOfHost(GDALDriver& driver) {
    if (!driver.pfnOpen || !driver.GetMetadataItem(GDAL_DCAP_RASTER)) return false;
    const std::string_view home = HomeOf(driver.pfnOpen);
    const std::string_view file = home.substr(home.rfind('/') + 1);
    return !home.empty() && home != HomeOf(&GDALOpenEx) && !file.starts_with("gdal_") &&
           !file.starts_with("ogr_");
}

bool ReachesElsewhere(Reach reach) {
    return reach != Reach::Plain && reach != Reach::NoFile && reach != Reach::ByType;
}

bool IsInTable(std::string_view name) {
    static const std::unordered_set<std::string_view> names = [] {
        std::unordered_set<std::string_view> all;
        for (const Driver& driver : kDrivers)
            all.insert(driver.name);
        return all;
    }();
    return names.contains(name);
}

/// Drivers are seldom added, and there are two hundred to look at.
void AddHostDrivers(GdalDrivers::Names& names) {
    GDALDriverManager& manager = *GetGDALDriverManager();
    const int count = manager.GetDriverCount();
    const std::pair<int, GDALDriver*> state(count, count > 0 ? manager.GetDriver(count - 1) : nullptr);
    static auto& known = *new std::pair<std::pair<int, GDALDriver*>, GdalDrivers::Names>;
    static std::mutex mutex;
    const std::lock_guard lock(mutex);
    if (known.first != state) {
        known = {state, {}};
        for (int i = 0; i < count; ++i) {
            GDALDriver* const driver = manager.GetDriver(i);
            if (driver && !IsInTable(driver->GetDescription()) && IsOfHost(*driver))
                known.second.push_back(driver->GetDescription());
        }
    }
    names.insert(names.end(), known.second.begin(), known.second.end());
}

}  // namespace

const GdalDrivers::Names& GdalDrivers::Plain() {
    static const Names names = [] {
        Names plain;
        for (const Driver& driver : kDrivers)
            if (driver.reach == Reach::Plain) plain.push_back(driver.name);
        plain.push_back(nullptr);
        return plain;
    }();
    return names;
}

const GdalDrivers::Names& GdalDrivers::ForName(const BString& file) {
    const std::string extension = BFileUtilities::GetExtension(file).ToLower().StdStr() + ".";
    for (const Extension& row : kExtensions)
        if (extension.size() > 1 &&
            std::string_view(row.extensions).find(extension) != std::string_view::npos)
            return row.drivers;
    return Plain();
}

GdalDrivers::Names GdalDrivers::Allowed() {
    Names names;
    {
        ProcessList& process = Process();
        const std::lock_guard lock(process.mutex);
        names = process.names;
    }
    for (const Scope* scope = innermost; scope; scope = scope->outer_)
        for (const std::string& name : scope->names_)
            names.push_back(name.c_str());
    AddHostDrivers(names);
    if (!names.empty()) names.push_back(nullptr);
    return names;
}

std::string GdalDrivers::RefusedFor(const BString& file) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(std::string(file.StdStr()), error)) return {};
    const Tellurion::QuietGdal quiet;
    RegisterDrivers();
    GDALOpenInfo content(file.StdStr().c_str(), GDAL_OF_RASTER);
    const Names allowed = Allowed();
    for (const Driver& row : kDrivers) {
        GDALDriver* const driver =
            ReachesElsewhere(row.reach) ? GetGDALDriverManager()->GetDriverByName(row.name) : nullptr;
        const bool is_allowed = std::ranges::any_of(
            allowed, [&](const char* name) { return name && std::string_view(name) == row.name; });
        if (driver && driver->pfnIdentify && !is_allowed && driver->pfnIdentify(&content) == TRUE)
            return row.name;
    }
    return {};
}

void GdalDrivers::Allow(const BString& names) {
    const std::vector<std::string> known = RequireKnown(names);
    ProcessList& process = Process();
    const std::lock_guard lock(process.mutex);
    process.names.clear();
    for (const std::string& name : known)
        process.names.push_back(process.texts.insert(name).first->c_str());
}

BString GdalDrivers::AllowedNames() {
    ProcessList& process = Process();
    const std::lock_guard lock(process.mutex);
    std::string text;
    for (const char* name : process.names)
        text.append(text.empty() ? "" : ",").append(name);
    return BString(text);
}

void GdalDrivers::Scope::Enter(const BParamList& params) {
    names_ = RequireKnown(params.GetString(kKey, ""));
    outer_ = innermost;
    innermost = this;
    is_entered_ = true;
}

void GdalDrivers::Scope::Leave() {
    innermost = outer_;
}

}  // namespace MapAnchor
