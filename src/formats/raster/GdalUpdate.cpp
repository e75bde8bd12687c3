#include "raster/GdalUpdate.h"

#include <cpl_vsi.h>

#include <memory>

namespace MapAnchor {

using Tellurion::BString;

namespace {

struct FileCloser {
    void operator()(VSILFILE* file) const noexcept { static_cast<void>(VSIFCloseL(file)); }
};
using File = std::unique_ptr<VSILFILE, FileCloser>;

constexpr std::size_t kHeadLength = std::size_t{64} << 10;

bool IsTiff(const std::string& head) {
    for (const char* mark : {"II*\0", "II+\0", "MM\0*", "MM\0+"})
        if (head.compare(0, 4, mark, 4) == 0) return true;
    return false;
}

bool GetLength(const std::string& path, std::uint64_t& length) {
    VSIStatBufL status;
    if (VSIStatExL(path.c_str(), &status, VSI_STAT_EXISTS_FLAG | VSI_STAT_SIZE_FLAG) != 0) return false;
    length = static_cast<std::uint64_t>(status.st_size);
    return true;
}

/// Empty for a file that is longer than such files are.
std::string ReadWhole(const std::string& path, std::uint64_t length) {
    constexpr std::uint64_t kLongest = std::uint64_t{16} << 20;
    const File in(length <= kLongest ? VSIFOpenL(path.c_str(), "rb") : nullptr);
    if (!in) return {};
    std::string content(static_cast<std::size_t>(length), '\0');
    content.resize(VSIFReadL(content.data(), 1, content.size(), in.get()));
    return content;
}

std::string MemoryFaultOfOpening() {
    const bool out_of_memory = CPLGetLastErrorType() == CE_Failure && CPLGetLastErrorNo() == CPLE_OutOfMemory;
    return out_of_memory ? CPLGetLastErrorMsg() : "";
}

}  // namespace

Savepoint::Savepoint(const BString& file) : path_(file.StdStr()), metadata_path_(path_ + ".aux.xml") {
    const File in(VSIFOpenL(path_.c_str(), "rb"));
    head_.resize(kHeadLength);
    head_.resize(in ? VSIFReadL(head_.data(), 1, head_.size(), in.get()) : 0);
    is_tiff_ = IsTiff(head_) && GetLength(path_, length_);
    std::uint64_t length = 0;
    has_metadata_ = GetLength(metadata_path_, length);
    if (has_metadata_) metadata_ = ReadWhole(metadata_path_, length);
}

void Savepoint::Restore() const {
    if (is_tiff_) RestoreTiff();
    RestoreMetadata();
}

void Savepoint::RestoreTiff() const {
    const File out(VSIFOpenL(path_.c_str(), "r+b"));
    if (!out) return;
    VSIFWriteL(head_.data(), 1, head_.size(), out.get());
    VSIFTruncateL(out.get(), length_);
}

void Savepoint::RestoreMetadata() const {
    if (!has_metadata_) {
        VSIUnlink(metadata_path_.c_str());
    } else if (!metadata_.empty()) {
        const File out(VSIFOpenL(metadata_path_.c_str(), "wb"));
        if (out) VSIFWriteL(metadata_.data(), 1, metadata_.size(), out.get());
    }
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
