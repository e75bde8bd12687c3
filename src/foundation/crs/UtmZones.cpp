#include "crs/UtmZones.h"

#include <Tellurion/Numbers.h>

namespace Tellurion {
namespace {

struct UtmZones {
    std::string_view datum;
    std::string_view esri;
    int before_first;
    int first;
    int last;
    char hemisphere;
};
constexpr UtmZones kUtmZones[] = {{"WGS 84", "WGS_1984", 32600, 1, 60, 'N'},
                                  {"WGS 84", "WGS_1984", 32700, 1, 60, 'S'},
                                  {"ETRS89", "ETRS_1989", 25800, 28, 38, 'N'},
                                  {"NAD83", "NAD_1983", 26900, 1, 23, 'N'},
                                  {"NAD27", "NAD_1927", 26700, 1, 22, 'N'}};

}  // namespace

int EpsgOfUtmZone(std::string_view datum, int zone, char hemisphere) {
    for (const UtmZones& zones : kUtmZones)
        if (datum == zones.datum && hemisphere == zones.hemisphere && zone >= zones.first &&
            zone <= zones.last)
            return zones.before_first + zone;
    return 0;
}

int EpsgOfEsriUtmZone(std::string_view name) {
    constexpr std::string_view kZone = "_UTM_Zone_";
    const std::size_t at = name.find(kZone);
    if (at == name.npos) return 0;
    const std::string_view datum = name.substr(0, at);
    const auto zone = static_cast<int>(ParseLong(name.substr(at + kZone.size())));
    for (const UtmZones& zones : kUtmZones)
        if (datum == zones.esri)
            if (const int number = EpsgOfUtmZone(zones.datum, zone, name.back())) return number;
    return 0;
}

}  // namespace Tellurion
