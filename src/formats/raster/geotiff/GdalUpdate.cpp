#include "raster/geotiff/GdalUpdate.h"

#include "common/policy/DiagnosticIds.h"
#include "common/policy/ReadNotes.h"
#include "raster/geotiff/AuxiliaryXml.h"
#include "raster/geotiff/TiffBlocks.h"
#include "raster/geotiff/TiffDirectory.h"
#include "raster/geotiff/UpdatedDirectory.h"

#include <cpl_string.h>

#include <cstring>
#include <vector>

namespace MapAnchor {

using Tellurion::BString;

namespace {

constexpr const char* kGeoTiffDriver = "GTiff";

bool IsInMemory(const std::string& path) {
    return path.rfind("/vsimem/", 0) == 0;
}

/// In an archive or on a server a write that fails would fail within libtiff.
bool IsOfGdalsFileSystem(const std::string& path) {
    return path.rfind("/vsi", 0) == 0 && !IsInMemory(path);
}

std::string MemoryFaultOfOpening() {
    const bool out_of_memory = CPLGetLastErrorType() == CE_Failure && CPLGetLastErrorNo() == CPLE_OutOfMemory;
    return out_of_memory ? CPLGetLastErrorMsg() : "";
}

std::string RefusalOf(const UpdateLock& lock, StagedFile* raster) {
    if (!lock.Refusal().empty() || !raster || !IsTiff(*raster)) return lock.Refusal();
    return FaultOfBlockLists(*raster);
}

/// The other files that the raster's georeferencing or description comes from.
std::vector<std::string> FilesBeside(GDALDataset& raster) {
    const CPLStringList files(raster.GetFileList());
    std::vector<std::string> names;
    for (int i = 1; i < files.size(); ++i)
        names.emplace_back(files[i]);
    return names;
}

void Note(const char* id, const char* text) {
    if (ReadNotes* const notes = ReadNotes::Current()) notes->Add({.id = id, .text = text});
}

/// GDAL updates such a file, and drops the layout.
bool HasCloudLayout(GDALDataset& raster) {
    const char* const layout = raster.GetMetadataItem("LAYOUT", "IMAGE_STRUCTURE");
    return layout && std::strcmp(layout, "COG") == 0;
}

}  // namespace

GdalUpdate::GdalUpdate(const BString& file) : file_(file) {
    const std::string path = file.StdStr();
    if (IsOfGdalsFileSystem(path)) {
        refusal_ = "it is in an archive or on a server; save into a copy on a disk";
        return;
    }
    if (!IsInMemory(path)) {
        lock_.emplace(path);
        folder_.emplace(path);
    }
    raster_ = OpenRasterForUpdate(file, folder_ ? BString(folder_->RasterName()) : file);
    memory_fault_ = MemoryFaultOfOpening();
    if (!raster_ || !folder_) return;
    refusal_ = RefusalOf(*lock_, folder_->Raster());
    has_cloud_layout_ = HasCloudLayout(*raster_);
    if (GDALDriver* driver = raster_->GetDriver()) driver_ = driver->GetDescription();
    if (driver_ != kGeoTiffDriver) layout_ = RasterState::LayoutOf(*raster_);
}

GdalUpdate::~GdalUpdate() {
    // Without a Close() nothing of what is staged reaches the disk.
    raster_.reset();
}

/// Opens what is staged and compares it. An auxiliary file goes before what the raster
/// itself says, so what it says of the place is taken out where it says something else.
std::string GdalUpdate::CheckStaged(const RasterState& wanted) {
    std::vector<std::string> beside;
    RasterState found;
    const auto difference = [&]() -> std::string {
        const GdalRaster staged = ReopenRaster(driver_.c_str(), BString(folder_->RasterName()));
        beside = staged ? FilesBeside(*staged) : std::vector<std::string>();
        if (!staged) return "the raster would not open again";
        // Only a file beside the raster can override its system.
        found = RasterState::Of(*staged,
                                {.system = !beside.empty(), .registration = wanted.registration == "Point"});
        return DifferenceOf(wanted, found);
    };
    std::string fault = difference();
    if (!fault.empty() && RemovePlaceFromAuxiliaryXml(*folder_)) fault = difference();
    if (fault.empty() && HasOtherSystem(wanted, found) && RemoveSystemFromAuxiliaryXml(*folder_))
        fault = difference();
    if (fault.empty() && wanted.registration == "Point" && found.registration != "Point")
        Note(DiagnosticId::kSavedRegistration,
             "the file no longer states that its positions are those of pixel centres (AREA_OR_POINT)");
    for (const std::string& name : fault.empty() ? std::vector<std::string>() : beside)
        fault += "; see whether " + name + " overrides it";
    return fault;
}

/// Where the blocks of a GeoTIFF are costs GDAL a sixth of an update, and is rarely asked: the disk
/// still has the old raster.
RasterState::Layout GdalUpdate::OldLayout() const {
    if (driver_ != kGeoTiffDriver) return layout_;
    const GdalRaster old = ReopenRaster(kGeoTiffDriver, file_);
    return old ? RasterState::LayoutOf(*old) : RasterState::Layout();
}

std::string GdalUpdate::CloseStaged() {
    const bool was_alone =
        driver_ == kGeoTiffDriver && (folder_->StandsAlone() || FilesBeside(*raster_).empty());
    // Only a file beside the raster can override its system.
    RasterState wanted = RasterState::Of(*raster_, {.layout = false, .system = !was_alone});
    quiet_.ForgetFailures();
    raster_.reset();
    if (!quiet_.FirstFailure().empty()) return quiet_.FirstFailure();
    // To open a raster again costs GDAL as much as to update it.
    const bool is_alone = was_alone && folder_->Files().size() == 1 && folder_->Raster();
    std::string fault;
    if (!is_alone || !ShowsWanted(*folder_->Raster(), wanted)) {
        wanted.layout = OldLayout();
        fault = CheckStaged(wanted);
    }
    if (fault.empty()) fault = Commit(*folder_, *lock_);
    if (fault.empty() && has_cloud_layout_)
        Note(DiagnosticId::kSavedLayout,
             "the file is no longer a cloud optimized GeoTIFF: GDAL's COG driver makes one of it again");
    return fault;
}

std::string GdalUpdate::Close() {
    if (!raster_) return {};
    if (folder_) return folder_->WithRealNames(CloseStaged());
    quiet_.ForgetFailures();
    raster_.reset();
    return quiet_.FirstFailure();
}

}  // namespace MapAnchor
