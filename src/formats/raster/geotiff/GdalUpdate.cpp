#include "raster/geotiff/GdalUpdate.h"

#include "raster/geotiff/AuxiliaryXml.h"
#include "raster/geotiff/TiffBlocks.h"

#include <cpl_string.h>

#include <cstring>
#include <vector>

namespace MapAnchor {

using Tellurion::BString;

namespace {

bool IsOfGdalsFileSystem(const std::string& path) {
    return path.rfind("/vsi", 0) == 0;
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

}  // namespace

GdalUpdate::GdalUpdate(const BString& file) {
    const std::string path = file.StdStr();
    if (!IsOfGdalsFileSystem(path)) {
        lock_.emplace(path);
        folder_.emplace(path);
    }
    raster_ = OpenRasterForUpdate(file, folder_ ? BString(folder_->RasterName()) : file);
    memory_fault_ = MemoryFaultOfOpening();
    if (!raster_ || !folder_) return;
    refusal_ = RefusalOf(*lock_, folder_->Raster());
    layout_ = RasterState::Of(*raster_).layout;
    if (GDALDriver* driver = raster_->GetDriver()) driver_ = driver->GetDescription();
}

GdalUpdate::~GdalUpdate() {
    // Without a Close() nothing of what is staged reaches the disk.
    raster_.reset();
}

/// Opens what is staged and compares it. An auxiliary file goes before what the raster
/// itself says, so what it says of the place is taken out where it says something else.
std::string GdalUpdate::CheckStaged(const RasterState& wanted) {
    std::vector<std::string> beside;
    const auto difference = [&]() -> std::string {
        const GdalRaster staged = ReopenRaster(driver_.c_str(), BString(folder_->RasterName()));
        beside = staged ? FilesBeside(*staged) : std::vector<std::string>();
        return staged ? DifferenceOf(wanted, RasterState::Of(*staged)) : "the raster would not open again";
    };
    std::string found = difference();
    if (!found.empty() && RemovePlaceFromAuxiliaryXml(*folder_)) found = difference();
    for (const std::string& name : found.empty() ? std::vector<std::string>() : beside)
        found += "; see whether " + name + " overrides it";
    return found;
}

std::string GdalUpdate::CloseStaged() {
    RasterState wanted = RasterState::Of(*raster_);
    wanted.layout = layout_;
    quiet_.ForgetFailures();
    raster_.reset();
    if (!quiet_.FirstFailure().empty()) return quiet_.FirstFailure();
    std::string fault = CheckStaged(wanted);
    if (fault.empty()) fault = Commit(*folder_, *lock_);
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
