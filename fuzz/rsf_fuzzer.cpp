// RSF files: any bytes read by name and by type. What was read and saved
// must be readable, with as many points.

#include "ReferenceFuzz.h"

using namespace Tellurion;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::MemoryFile memory("rsf");
    memory.Fill(data, size);
    BGeoReference reference;
    if (!fuzz::ReadOnAllRoads(EReferenceType::RSF, memory.Path(), reference)) return 0;
    if (!fuzz::SaveOnAllRoads(EReferenceType::RSF, memory.Out(), reference)) return 0;
    BGeoReference back;
    if (!fuzz::ReadByName(memory.Out(), back)) std::abort();
    if (back.PointPairVector.size() != reference.PointPairVector.size()) std::abort();
    return 0;
}
