#include "raster/gdal/GdalRaster.h"

#include <Tellurion/RandomAccessFile.h>
#include "raster/gdal/GdalDrivers.h"
#include "raster/gdal/SelfContainedVrt.h"
#include "raster/kap/KapHeader.h"

#include <Tellurion/BFileUtilities.h>
#include <Tellurion/BLogger.h>

#include <algorithm>
#include <cstddef>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace MapAnchor {

using Tellurion::BFileUtilities;
using Tellurion::BLogger;
using Tellurion::BString;
using Tellurion::ELogSeverity;

void RegisterDrivers() {
    // Registering again scans the folder of plug-ins, so it is done only when the host changed
    // the list of drivers since.
    static std::mutex mutex;
    static int registered = 0;
    const std::lock_guard lock(mutex);
    if (registered > 0 && GDALGetDriverCount() == registered) return;
    GDALAllRegister();
    ConfinedFiles::Install();
    registered = GDALGetDriverCount();
}

namespace {

GDALDataset* Open(const char* name, const GdalDrivers::Names& drivers, unsigned access = GDAL_OF_READONLY) {
    return GDALDataset::Open(name, GDAL_OF_RASTER | GDAL_OF_VERBOSE_ERROR | access, drivers.data(), nullptr,
                             nullptr);
}

bool IsVrtText(const BString& file) {
    constexpr std::size_t kLongest = std::size_t{4} << 20;
    Tellurion::RandomAccessFile in(file);
    if (in.Read(0, 1024).find("<VRTDataset") == std::string_view::npos || in.Size() > kLongest) return false;
    return IsSelfContainedVrt(in.Window(0, kLongest));
}

/// GDAL's reader of charts takes time by the square of the lines in the header, and reads a
/// header without an end to the end of the file.
bool IsLongChart(const BString& file) {
    constexpr std::size_t kMaxLines = 10'000;
    constexpr char kEndOfHeader = '\x1A';
    Tellurion::RandomAccessFile in(file);
    const std::string_view head = in.Read(0, 1024);
    const auto begins = [head](std::string_view mark) { return head.find(mark) != std::string_view::npos; };
    if (!begins("BSB/") && !begins("NOS/") && !begins("WX\\")) return false;
    const std::string header = in.Window(0, kLongestKapHeader);
    const std::size_t end = header.find(kEndOfHeader);
    return (end == std::string::npos && header.size() == kLongestKapHeader) ||
           std::count(header.begin(),
                      header.begin() + static_cast<std::ptrdiff_t>(std::min(end, header.size())),
                      '\n') > static_cast<std::ptrdiff_t>(kMaxLines);
}

GdalDrivers::Names DriversFor(const BString& file, RasterKinds kinds) {
    GdalDrivers::Names drivers =
        kinds == RasterKinds::OfName ? GdalDrivers::ForName(file) : GdalDrivers::Plain();
    const auto chart = std::ranges::find_if(
        drivers, [](const char* name) { return name && std::string_view(name) == "BSB"; });
    if (chart != drivers.end() && IsLongChart(file)) drivers.erase(chart);
    return drivers;
}

/// The parts of other drivers in a file are left alone: GDAL would have any driver read them.
GdalRaster OpenConfined(const BString& file, RasterKinds kinds, Sidecars sidecars) {
    auto files = std::make_shared<ConfinedFiles>(file, sidecars);
    const CPLConfigOptionSetter alone("NITF_OPEN_UNDERLYING_DS", "NO", false);
    GDALDataset* raster = Open(files->Name().c_str(), DriversFor(file, kinds));
    if (!raster && !files->IsRefused() && IsVrtText(file))
        raster = Open(files->Name().c_str(), {"VRT", nullptr});
    GdalRaster opened(raster, GdalCloser{std::move(files)});
    if (!IsUsable(opened)) opened.reset();
    return opened;
}

/// A name of GDAL's file layer. Its drivers find files beside it on their own.
GdalRaster OpenVirtual(const BString& file, RasterKinds kinds, Sidecars sidecars) {
    const bool hides = sidecars == Sidecars::Hidden;
    std::optional<CPLConfigOptionSetter> folder;
    std::optional<CPLConfigOptionSetter> auxiliary;
    if (hides) {
        folder.emplace("GDAL_DISABLE_READDIR_ON_OPEN", "EMPTY_DIR", false);
        auxiliary.emplace("GDAL_PAM_ENABLED", "NO", false);
    }
    return GdalRaster(
        Open(file.Utf8(), kinds == RasterKinds::OfName ? GdalDrivers::ForName(file) : GdalDrivers::Plain()));
}

}  // namespace

bool HasGdalDriver(const char* name) {
    RegisterDrivers();
    return GDALGetDriverByName(name) != nullptr;
}

GdalRaster OpenRaster(const BString& file, RasterKinds kinds, Sidecars sidecars) {
    RegisterDrivers();
    if (!BFileUtilities::IsRegularFile(file)) {
        if (BFileUtilities::Exists(file)) return nullptr;
        return OpenVirtual(file, kinds, sidecars);
    }
    GdalRaster raster = OpenConfined(file, kinds, sidecars);
    if (raster) return raster;
    const GdalDrivers::Names allowed = GdalDrivers::Allowed();
    return GdalRaster(allowed.empty() ? nullptr : Open(file.Utf8(), allowed));
}

GdalRaster OpenRasterForUpdate(const BString& file, const BString& name) {
    RegisterDrivers();
    GDALDataset* raster = Open(name.Utf8(), GdalDrivers::Plain(), GDAL_OF_UPDATE);
    if (!raster && IsVrtText(file)) raster = Open(name.Utf8(), {"VRT", nullptr}, GDAL_OF_UPDATE);
    const GdalDrivers::Names allowed = GdalDrivers::Allowed();
    if (!raster && !allowed.empty()) raster = Open(name.Utf8(), allowed, GDAL_OF_UPDATE);
    return GdalRaster(raster);
}

GdalRaster ReopenRaster(const char* driver, const BString& name) {
    return GdalRaster(Open(name.Utf8(), {driver, nullptr}));
}

GdalRaster OpenAuxiliary(const GdalRaster& raster) {
    const char* const name = raster->GetDescription();
    return GdalRaster(GDALDataset::FromHandle(GDALFindAssociatedAuxFile(name, GA_ReadOnly, raster.get())),
                      raster.get_deleter());
}

bool IsUsable(const GdalRaster& raster) {
    ConfinedFiles* const files = raster.get_deleter().files.get();
    if (!files) return true;
    for (const std::string& refusal : files->TakeRefusals())
        BLogger::Instance()->WriteLine(ELogSeverity::Error,
                                       "BRefGeoTIFF::Read left out what it may not read: %s", refusal);
    return !files->IsRefused();
}

}  // namespace MapAnchor
