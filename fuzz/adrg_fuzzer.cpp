// ADRG descriptions: any bytes as the file of an image, and as an overview file.

#include "ReferenceFuzz.h"

#include "raster/adrg/AdrgInfo.h"
#include "raster/adrg/BRefADRG.h"

#include <string_view>

using namespace Tellurion;
using MapAnchor::AdrgInfo;
using MapAnchor::AdrgLayout;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::MemoryFile memory("ovr");
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const AdrgInfo info = MapAnchor::ParseAdrgInfo(bytes, AdrgLayout::GeneralInformation, "tpsgi001");
    if (info.fault == AdrgInfo::Fault::None) info.ToAffine();
    memory.Fill(data, size);
    BGeoReference reference;
    for (const unsigned int flags : {0U, 3U})
        fuzz::Succeeds([&] { MapAnchor::BRefADRG::Read(memory.Path(), flags, reference); });
    BString used = memory.Path();
    MapAnchor::BRefADRG::Read(BString("a.ovr"), reference, used);
    return 0;
}
