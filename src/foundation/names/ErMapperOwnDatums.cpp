#include "names/ErMapperOwnDatums.h"

#include <string>
#include <string_view>

namespace GeoCalc::DB {
namespace {

constexpr int kNad27 = 4267;
constexpr int kNad83 = 4269;
constexpr int kWgs84 = 4326;

struct Pattern {
    std::string_view start;
    std::string_view end;
    int epsg;
};

// The first that fits decides.
constexpr Pattern kPatterns[] = {
    {"NUTM", "", kWgs84},    {"SUTM", "", kWgs84},       {"MGA", "", 4283},
    {"PCG94", "", 4283},     {"TMAMG", "", 4202},        {"TMISG", "", 4202},
    {"TMPNG55S", "", 4202},  {"TMVICMAP", "", 4202},     {"L2NSW", "", 4202},
    {"NZTM", "", 4167},      {"NZ", "49", 4272},         {"TMNZNI", "", 4272},
    {"TMNZSI", "", 4272},    {"TMNZ", "", 4167},         {"KOREA_", "", 4162},
    {"JAPAN19_", "", 4301},  {"TAIWAN", "", 3824},       {"TMHK80", "", 4611},
    {"LMFRAN93", "", 4171},  {"LMCC", "", 4171},         {"GEOPORTALFXX", "", 4171},
    {"LM1FR", "", 4275},     {"LAMBERTNC", "", 4749},    {"GLABREUN", "", 4626},
    {"LM2BELG72", "", 4313}, {"LM2BELG", "", 4215},      {"EGSA87", "", 4121},
    {"HGRS87", "", 4121},    {"TMEGSA87", "", 4121},     {"PUW", "", 4258},
    {"TMBOAGA", "", 4265},   {"TMGER", "", 4314},        {"TMGKN", "", 4284},
    {"TMOSGB", "", 4277},    {"TMOSIRL", "", 4299},      {"TMRT90", "", 4124},
    {"TMFIN", "", 4123},     {"TMPORT_SHG73", "", 4274}, {"TMPORT", "", 4207},
    {"TMSLO", "", 3906},     {"TMARG", "", 4221},        {"TMPHIL", "", 4253},
    {"TMEGYPT", "", 4229},   {"TMGHANA", "", 4168},      {"CASNGPOR", "", 4245},
    {"CATRINID", "", 4302},  {"QC_MTM", "", kNad83},     {"AB_10TM", "", kNad83},
    {"ALBC", "", kNad83},    {"ALTEALE", "", kNad83},    {"ALUSA_FT", "", kNad83},
    {"L2USA48", "", kNad83}, {"ALFLA_N27", "", kNad27},  {"ALFLA", "", kNad83},
    {"ALFGDL", "", 4152},    {"L2TX_SHACK", "", kNad27}, {"L2TX_", "", kNad83},
    {"ALTX_", "", kNad83},   {"IDTM", "", kNad27},       {"", "83", kNad83},
    {"", "F27", kNad27},
};

bool IsInUsFeet(const ErMapperProjection& projection) {
    return projection.metres_per_unit > 0.30480060 && projection.metres_per_unit < 0.30480061;
}

/// A zone of the State Plane grids, which moved to metres with NAD83: feet alone mean
/// NAD27, metres with a twin in feet that says 83 mean NAD83.
int StatePlaneDatum(const ErMapperProjection& projection) {
    const std::string_view name = projection.name;
    if (IsInUsFeet(projection) && (name.ends_with("F") || name.ends_with("FT"))) return kNad27;
    if (!name.ends_with("M")) return 0;
    const std::string stem(name.substr(0, name.size() - 1));
    const ErMapperNames& names = ErMapperNames::Instance();
    return names.FindProjection(stem + "F83") || names.FindProjection(stem + "FT83") ? kNad83 : 0;
}

}  // namespace

int OwnDatumOf(const ErMapperProjection& projection) {
    for (const Pattern& pattern : kPatterns)
        if (projection.name.starts_with(pattern.start) && projection.name.ends_with(pattern.end))
            return pattern.epsg;
    const int state_plane = StatePlaneDatum(projection);
    return state_plane != 0 ? state_plane : kWgs84;
}

}  // namespace GeoCalc::DB
