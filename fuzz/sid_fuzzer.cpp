// MrSID headers: any bytes read by name and by type.

#include "ReferenceFuzz.h"

using namespace Tellurion;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::MemoryFile memory("sid");
    memory.Fill(data, size);
    BGeoReference reference;
    fuzz::ReadOnAllRoads(EReferenceType::MrSID, memory.Path(), reference);
    return 0;
}
