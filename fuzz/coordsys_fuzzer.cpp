// Texts of coordinate systems: the first byte chooses the reader of the rest. What is
// understood gives its well-known text, which is read back; one text in ten gives
// itself in every form, since that asks much of PROJ's database.

#include <Tellurion/BCoordSys.h>
#include <Tellurion/BCoordSysException.h>
#include <Tellurion/BCoordSysRepository.h>
#include <Tellurion/BLinearUnit.h>
#include <Tellurion/BUnit.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

using namespace Tellurion;

namespace {

BCoordSys* ReadNames(const std::string& text) {
    const std::size_t first = text.find('\n');
    const std::size_t second = text.find('\n', first == std::string::npos ? first : first + 1);
    const std::string projection = text.substr(0, first);
    if (first == std::string::npos)
        return BCoordSysRepository::Instance()->GetCoordSys({"ERMapper", BString(projection)});
    const std::string datum =
        text.substr(first + 1, second == std::string::npos ? second : second - first - 1);
    const std::string units = second == std::string::npos ? std::string() : text.substr(second + 1);
    return BCoordSysRepository::Instance()->ReadCoordSysFromPlainTextStrings(BString(projection),
                                                                             BString(datum), BString(units));
}

BCoordSys* Read(char road, const std::string& text) {
    switch (road) {
        case 'W':
            return BCoordSys::FromWKT(BString(text));
        case 'M':
            return BCoordSysRepository::Instance()->ReadCoordSysFromMIFString(BString(text));
        case 'N':
            return ReadNames(text);
        case 'E':
            return BCoordSys::FromEPSGCode(BString(text));
        default:
            return nullptr;
    }
}

void Tell(const BCoordSys& system) {
    BIdentifier identifier;
    system.GetIdentifier("ERMapper", identifier);
    system.GetDatumIdentifier("ERMapper", identifier);
    system.ToPRJ();
    system.GetGCCoordSys();
    BCoordSysRepository::Instance()->WriteCoordSysToMIFString(system);
    try {
        system.ConvertToGeodetic(system.ConvertFromGeodetic({9.0, 48.0, 0.0}));
    } catch (const BCoordSysException&) {
    }
}

bool IsOneInTen(const std::string& text) {
    std::uint32_t hash = 2166136261U;
    for (const char c : text)
        hash = (hash ^ static_cast<unsigned char>(c)) * 16777619U;
    return hash % 10 == 0;
}

/// The cheap questions, which all systems answer.
void Ask(const BCoordSys& system) {
    system.GetUnits();
    system.GetVerticalUnits();
    delete system.GetBaseCoordSys();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2 || size > 4096) return 0;
    const std::string text(reinterpret_cast<const char*>(data + 1), size - 1);
    try {
        const std::unique_ptr<BCoordSys> system(Read(static_cast<char>(data[0]), text));
        if (!system) return 0;
        Ask(*system);
        if (IsOneInTen(text)) Tell(*system);
        const BString wkt = system->ToWKT();
        if (wkt.IsEmpty()) return 0;
        const std::unique_ptr<BCoordSys> back(BCoordSys::FromWKT(wkt));
        if (back && back->GetKind() != system->GetKind()) std::abort();
    } catch (const BCoordSysException&) {
    }
    return 0;
}
