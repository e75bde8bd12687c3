// CADRG frames: any bytes through the probing of the front door and the read by type.

#include "ReferenceFuzz.h"

#include "raster/cadrg/BRefCADRG.h"

using namespace Tellurion;
using MapAnchor::BRefCADRG;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::MemoryFile memory("on1");
    memory.Fill(data, size);
    const BString file = memory.Path();
    BGeoReference by_name;
    fuzz::ReadByName(file, by_name);
    BGeoReference reference;
    const bool good = BRefCADRG::Read(file, reference);
    const unsigned int flags = 0;
    BGeoReference typed;
    // Both reads accept the same frames.
    if (fuzz::Succeeds([&] { BRefCADRG::Read(file, flags, typed); }) != good) std::abort();
    if (typed.HasMathTransform() != reference.HasMathTransform()) std::abort();
    return 0;
}
