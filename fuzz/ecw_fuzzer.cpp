// ECW headers, versions 2 and 3: any bytes read by name and by type.

#include "ReferenceFuzz.h"

using namespace Tellurion;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::MemoryFile memory("ecw");
    memory.Fill(data, size);
    BGeoReference reference;
    fuzz::ReadOnAllRoads(EReferenceType::ECW, memory.Path(), reference);
    return 0;
}
