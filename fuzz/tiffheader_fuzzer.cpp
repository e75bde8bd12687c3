// GeoTIFF headers: what is answered from a header is GDAL's answer to the last bit, on the
// first sight of its key and on the next. Ends at the first difference.

#include "ReferenceFuzz.h"

#include "common/policy/ReadNotes.h"
#include "raster/geotiff/GeoTiffHeader.h"
#include "raster/geotiff/KnownRasters.h"

#include <Tellurion/ThreadLog.h>
#include <cpl_error.h>

#include <cstdio>
#include <optional>
#include <sstream>

using namespace MapAnchor;
using Tellurion::BString;

namespace {

/// A raster any bytes of which name a file by a path is refused by the read through GDAL.
bool IsRefused(const BString& file) {
    Tellurion::ThreadLog log;
    const ReadNotes notes;
    ReadRaster(file, RasterKinds::OfName);
    for (const BString& line : log.Take())
        if (line.StdStr().find("left out what it may not read") != std::string::npos) return true;
    return false;
}

std::string Answer(const BString& file, bool from_headers) {
    std::optional<HeaderReads> headers;
    if (from_headers) headers.emplace();
    const ReadNotes notes;
    const auto raster = ReadRaster(file, RasterKinds::OfName);
    std::ostringstream out;
    out << std::hexfloat << notes.width << ' ' << notes.height << ' ' << notes.files.size() << ' ';
    if (!raster) return out.str() + "nothing";
    out << raster->pixel_is_point << ' ' << raster->point_count << ' ';
    if (const auto& t = raster->terms)
        out << t->a << ' ' << t->b << ' ' << t->c << ' ' << t->d << ' ' << t->e << ' ' << t->f << ' ';
    for (const BString& text : raster->well_known_texts)
        out << text.StdStr() << ' ';
    if (raster->vertical_unit) out << raster->vertical_unit->GetName().StdStr();
    return out.str();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::MemoryFile memory("tif");
    if (size < 8 || (data[0] != 'I' && data[0] != 'M')) return -1;
    memory.Fill(data, size);
    const BString file(memory.Path());
    if (!GeoTiffHeader::Read(file)) return 0;  // for GDAL alone
    const std::string wanted = Answer(file, false);
    for (int sight = 1; sight <= 2; ++sight) {
        const std::string found = Answer(file, true);
        if (found == wanted || IsRefused(file)) continue;
        std::fprintf(stderr, "sight %d\nGDAL:   %s\nheader: %s\n", sight, wanted.c_str(), found.c_str());
        std::abort();
    }
    return 0;
}
