// JPEG 2000 boxes: any bytes through the walk over boxes and the tags of their GeoTIFF
// box. GDAL, which is asked where the boxes leave something open, is left out: it is
// tested elsewhere, and slow.

#include "raster/geotiff/GeoTiffTags.h"
#include "raster/jp2/BoxFile.h"

#include "ReferenceFuzz.h"

#include <cmath>

using namespace MapAnchor;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::MemoryFile memory("jp2");
    memory.Fill(data, size);
    Tellurion::RandomAccessFile file;
    if (!file.Open(memory.Path())) std::abort();
    BoxWalk walk(file);
    Box box;
    std::uint64_t end = 0;
    while (walk.Next(box)) {
        if (box.offset < end || box.offset + box.length > size) std::abort();
        end = box.offset + box.length;
        const std::string_view content = walk.Content(box, 1 << 20);
        if (content.size() != box.length) std::abort();
        const auto tags = ParseTiffTags(content.substr(std::min<std::size_t>(content.size(), 16)));
        if (!tags) continue;
        const auto corner = tags->CornerAffine();
        if (corner && !std::isfinite(corner->c + corner->f)) std::abort();
        const int code = tags->SystemCode();
        if (code < 0 || code > 65535 || tags->TextKey(1026).size() > tags->ascii.size()) std::abort();
    }
    return 0;
}
