// ERS headers: any bytes read by name and by type. What was read and
// saved must not come back with a transform that was not there.

#include "ReferenceFuzz.h"

using namespace Tellurion;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::MemoryFile memory("ers");
    memory.Fill(data, size);
    BGeoReference reference;
    if (!fuzz::ReadOnAllRoads(EReferenceType::ERS, memory.Path(), reference)) return 0;
    if (!fuzz::SaveOnAllRoads(EReferenceType::ERS, memory.Out(), reference)) return 0;
    // Sizes below eighteen decimals vanish, and a size of zero makes no transform.
    BGeoReference back;
    if (fuzz::ReadByName(memory.Out(), back) && back.HasMathTransform() && !reference.HasMathTransform())
        std::abort();
    return 0;
}
