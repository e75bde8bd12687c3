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

struct EsriName {
    std::string_view name;
    int number;
};
constexpr EsriName kEsriNames[] = {{"GCS_WGS_1984", 4326},
                                   {"GCS_North_American_1983", 4269},
                                   {"GCS_ETRS_1989", 4258},
                                   {"ETRS_1989_LAEA", 3035},
                                   {"British_National_Grid", 27700},
                                   {"RGF_1993_Lambert_93", 2154},
                                   {"RD_New", 28992},
                                   {"Belge_Lambert_1972", 31370},
                                   {"CH1903+_LV95", 2056},
                                   {"NZGD_2000_New_Zealand_Transverse_Mercator", 2193}};

}  // namespace

int EpsgOfUtmZone(std::string_view datum, int zone, char hemisphere) {
    for (const UtmZones& zones : kUtmZones)
        if (datum == zones.datum && hemisphere == zones.hemisphere && zone >= zones.first &&
            zone <= zones.last)
            return zones.before_first + zone;
    return 0;
}

int EpsgOfEsriName(std::string_view name) {
    for (const auto& [known, number] : kEsriNames)
        if (name == known) return number;
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
