#include "raster/GdalUpdate.h"

#include <cpl_vsi.h>

#include <cstring>
#include <memory>

namespace MapAnchor {

using Tellurion::BString;

namespace {

struct FileCloser {
    void operator()(VSILFILE* file) const noexcept { static_cast<void>(VSIFCloseL(file)); }
};
using File = std::unique_ptr<VSILFILE, FileCloser>;

bool IsTiff(const std::array<char, 16>& head) {
    for (const char* mark : {"II*\0", "II+\0", "MM\0*", "MM\0+"})
        if (std::memcmp(head.data(), mark, 4) == 0) return true;
    return false;
}

std::string MemoryFaultOfOpening() {
    const bool out_of_memory = CPLGetLastErrorType() == CE_Failure && CPLGetLastErrorNo() == CPLE_OutOfMemory;
    return out_of_memory ? CPLGetLastErrorMsg() : "";
}

}  // namespace

TiffSavepoint::TiffSavepoint(const BString& file) : path_(file.StdStr()) {
    const File in(VSIFOpenL(path_.c_str(), "rb"));
    if (!in || VSIFReadL(head_.data(), 1, head_.size(), in.get()) != head_.size() || !IsTiff(head_)) return;
    VSIStatBufL status;
    is_tiff_ = VSIStatExL(path_.c_str(), &status, VSI_STAT_SIZE_FLAG) == 0;
    length_ = is_tiff_ ? static_cast<std::uint64_t>(status.st_size) : 0;
}

void TiffSavepoint::Restore() const {
    if (!is_tiff_) return;
    const File out(VSIFOpenL(path_.c_str(), "r+b"));
    if (!out) return;
    VSIFWriteL(head_.data(), 1, head_.size(), out.get());
    VSIFTruncateL(out.get(), length_);
}

GdalUpdate::GdalUpdate(const BString& file)
    : savepoint_(file), raster_(OpenRasterForUpdate(file)), memory_fault_(MemoryFaultOfOpening()) {}

std::string GdalUpdate::Close() {
    if (!raster_) return {};
    quiet_.ForgetFailures();
    raster_.reset();
    if (!quiet_.FirstFailure().empty()) savepoint_.Restore();
    return quiet_.FirstFailure();
}

}  // namespace MapAnchor
