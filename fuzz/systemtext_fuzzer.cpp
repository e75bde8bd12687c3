// Whatever a person types for a coordinate system. What is understood is written in each
// notation of the whole system, and the one that keeps most reads back as the same kind.

#include <Tellurion/BCoordSys.h>
#include <Tellurion/BCoordSysException.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

using namespace Tellurion;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > 4096) return 0;
    const std::string text(reinterpret_cast<const char*>(data), size);
    // The name of a file on this machine is not this target's matter.
    if (text.find(".prj") != std::string::npos || text.find(".PRJ") != std::string::npos) return 0;
    try {
        const std::unique_ptr<BCoordSys> system(BCoordSys::FromText(BString(text)));
        if (!system) return 0;
        system->ToWholeWKT();
        system->ToPROJString();
        delete system->GetVerticalCoordSys();
        const std::unique_ptr<BCoordSys> back(BCoordSys::FromWKT(system->ToWKT2()));
        if (back && back->GetKind() != system->GetKind()) std::abort();
        if (back && back->GetCoordinateEpoch() != system->GetCoordinateEpoch()) std::abort();
    } catch (const BCoordSysException&) {
    }
    return 0;
}
