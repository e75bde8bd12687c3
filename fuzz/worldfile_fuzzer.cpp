// World files: any bytes read by name and by type, and what was read
// out again through the writer.

#include "ReferenceFuzz.h"

using namespace Tellurion;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::MemoryFile memory("tfw");
    memory.Fill(data, size);
    BGeoReference reference;
    if (!fuzz::ReadOnAllRoads(EReferenceType::WLD, memory.Path(), reference)) return 0;
    // A transform that was read can be saved.
    if (!fuzz::SaveOnAllRoads(EReferenceType::WLD, memory.Out(), reference)) std::abort();
    return 0;
}
