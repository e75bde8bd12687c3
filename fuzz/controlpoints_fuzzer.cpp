// Files of control points: any bytes are read, or refused with a failure of the library's
// family. What was read is saved and read back with as many points.

#include "ReferenceFuzz.h"

#include <MapAnchor/BControlPointFile.h>

using namespace Tellurion;
using MapAnchor::BControlPointFile;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::MemoryFile memory("points");
    memory.Fill(data, size);
    BControlPointFile file;
    if (!fuzz::Succeeds([&] { file = BControlPointFile::Read(memory.Path()); })) return 0;
    if (!fuzz::Succeeds([&] { file.Write(memory.Out()); })) return 0;
    BControlPointFile back;
    if (!fuzz::Succeeds([&] { back = BControlPointFile::Read(memory.Out()); })) std::abort();
    if (back.Points.size() != file.Points.size()) std::abort();
    return 0;
}
