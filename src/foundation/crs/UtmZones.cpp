#include "crs/UtmZones.h"

namespace Tellurion {
namespace {

struct UtmZones {
    std::string_view datum;
    int before_first;
    int first;
    int last;
    char hemisphere;
};
constexpr UtmZones kUtmZones[] = {{"WGS 84", 32600, 1, 60, 'N'},
                                  {"WGS 84", 32700, 1, 60, 'S'},
                                  {"ETRS89", 25800, 28, 38, 'N'},
                                  {"NAD83", 26900, 1, 23, 'N'},
                                  {"NAD27", 26700, 1, 22, 'N'}};

}  // namespace

int EpsgOfUtmZone(std::string_view datum, int zone, char hemisphere) {
    for (const UtmZones& zones : kUtmZones)
        if (datum == zones.datum && hemisphere == zones.hemisphere && zone >= zones.first &&
            zone <= zones.last)
            return zones.before_first + zone;
    return 0;
}

}  // namespace Tellurion
