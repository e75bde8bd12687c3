#include "raster/gdal/VirtualFiles.h"

#include <Tellurion/QuietGdal.h>

#include <cpl_string.h>
#include <cpl_vsi.h>

#include <memory>

namespace MapAnchor::VirtualFiles {

using Tellurion::BString;

namespace {

struct FileCloser {
    void operator()(VSILFILE* file) const noexcept { VSIFCloseL(file); }
};

}  // namespace

Kind KindOf(const BString& file) {
    const Tellurion::QuietGdal quiet;
    VSIStatBufL status;
    if (VSIStatExL(file.Utf8(), &status, VSI_STAT_EXISTS_FLAG | VSI_STAT_NATURE_FLAG) != 0) return Kind::None;
    return VSI_ISDIR(status.st_mode) ? Kind::Folder : Kind::File;
}

std::optional<std::string> Read(const BString& file, std::size_t limit) {
    const Tellurion::QuietGdal quiet;
    const std::unique_ptr<VSILFILE, FileCloser> in(VSIFOpenL(file.Utf8(), "rb"));
    if (!in) return std::nullopt;
    constexpr std::size_t kChunk = std::size_t{64} << 10;
    std::string content;
    for (std::size_t got = kChunk; got == kChunk;) {
        const std::size_t have = content.size();
        if (have > limit) return std::nullopt;
        content.resize(have + kChunk);
        got = VSIFReadL(content.data() + have, 1, kChunk, in.get());
        content.resize(have + got);
    }
    return content.size() > limit ? std::nullopt : std::optional(std::move(content));
}

std::vector<std::string> List(const std::string& folder, int limit) {
    const Tellurion::QuietGdal quiet;
    const std::unique_ptr<char*, decltype(&CSLDestroy)> names(VSIReadDirEx(folder.c_str(), limit),
                                                              CSLDestroy);
    std::vector<std::string> list;
    for (char** name = names.get(); name && *name; ++name)
        list.emplace_back(*name);
    return list;
}

}  // namespace MapAnchor::VirtualFiles
