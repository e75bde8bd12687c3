#include "import/LGIProjectionMapping.h"

#include "import/LGINumbers.h"
#include "import/OgrSystem.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace VellumLib {
namespace {

/// How a value becomes of the parameter's text.
enum class Rule {
    AsIs,
    OneForZero,
    OnlyWhenEmpty,  ///< a file that gives the parameter has it left out
    AlwaysZero,     ///< whatever the file says
    AlwaysOne,
};

struct Parameter {
    const char* name = nullptr;
    LGIParameter from = kProjectionType;
    Rule rule = Rule::AsIs;
};

struct Mapping {
    std::int32_t id;
    const char* projection;
    std::array<Parameter, 4> parameters;  ///< in the order of the calls
};

constexpr Parameter kLatitude = {"latitude_of_origin", kOriginLatitude};
constexpr Parameter kMeridian = {"central_meridian", kCentralMeridian};
constexpr Parameter kCentreLatitude = {"latitude_of_center", kOriginLatitude};
constexpr Parameter kCentreMeridian = {"longitude_of_center", kCentralMeridian};
constexpr Parameter kParallelOne = {"standard_parallel_1", kStandardParallelOne};
constexpr Parameter kParallelTwo = {"standard_parallel_2", kStandardParallelTwo};

constexpr std::int32_t kEquidistantCylindrical = 23;
constexpr std::int32_t kTransverseMercator = 70;

// Azimuthal and conic neighbours differ in "origin" and "center" as OGR names them.
constexpr Mapping kMappings[] = {
    {2, "Albers_Conic_Equal_Area", {{kCentreLatitude, kCentreMeridian, kParallelOne, kParallelTwo}}},
    {4, "Azimuthal_Equidistant", {{kLatitude, kMeridian}}},
    {8, "Bonne", {{{"standard_parallel_1", kOriginLatitude}, kMeridian}}},
    {9, "Cassini", {{kLatitude, kMeridian}}},
    {17, "Eckert_IV", {{kMeridian}}},
    {19, "Eckert_VI", {{kMeridian}}},
    {21, "Cylindrical_Equal_Area", {{kLatitude, kMeridian}}},
    {kEquidistantCylindrical,
     "Equidistant_Cylindrical",
     {{kMeridian, {"standard_parallel_1", kStandardParallel}}}},
    {28, "Gnomonic", {{kLatitude, kMeridian}}},
    {41, "Lambert_Conformal_Conic_2SP", {{kLatitude, kMeridian, kParallelOne, kParallelTwo}}},
    {46, "Mercator_1SP", {{kLatitude, kMeridian, {"scale_factor", kScaleFactor, Rule::OneForZero}}}},
    {48, "Miller_Cylindrical", {{kCentreMeridian}}},
    {49, "Mollweide", {{kMeridian}}},
    {50, "New_Zealand_Map_Grid", {{kLatitude, kMeridian}}},
    {53, "Orthographic", {{kCentreLatitude, kCentreMeridian}}},
    {57,
     "Polar_Stereographic",
     {{{"latitude_of_origin", kLatitudeOfTrueScale},
       {"central_meridian", kLongitudeDownFromPole, Rule::AlwaysZero},
       {"scale_factor", kScaleFactor, Rule::AlwaysOne}}}},
    {59, "Polyconic", {{kLatitude, kMeridian}}},
    {63, "Sinusoidal", {{kMeridian}}},
    {65, "Stereographic", {{kLatitude, kMeridian, {"scale_factor", kScaleFactor, Rule::OnlyWhenEmpty}}}},
    {kTransverseMercator, "Transverse_Mercator", {{kLatitude, kMeridian, {"scale_factor", kScaleFactor}}}},
    {77, "VanDerGrinten", {{kMeridian}}},
};

double ValueOf(const Parameter& parameter, const std::string& text) {
    switch (parameter.rule) {
        case Rule::AlwaysZero:
            return 0.0;
        case Rule::AlwaysOne:
            return 1.0;
        default:
            break;
    }
    const double value = LGIReal(text);
    return parameter.rule == Rule::OneForZero && value == 0.0 ? 1.0 : value;
}

void Set(OGRSpatialReference& srs, const Parameter& parameter, const std::string& text) {
    if (parameter.rule == Rule::OnlyWhenEmpty && !text.empty()) return;
    OSRSetNormProjParm(HandleOf(srs), parameter.name, ValueOf(parameter, text));
}

}  // namespace

std::string SetLGIProjection(OGRSpatialReference& srs, std::int32_t id, const LGIParameterText& text) {
    const auto* mapping = std::find_if(std::begin(kMappings), std::end(kMappings),
                                       [id](const Mapping& candidate) { return candidate.id == id; });
    if (mapping == std::end(kMappings)) return {};
    // These two come ahead of the projection itself.
    if (id == kEquidistantCylindrical && !text(kOriginLatitude).empty())
        Set(srs, kLatitude, text(kOriginLatitude));
    if (id == kTransverseMercator) OSRSetProjCS(HandleOf(srs), mapping->projection);
    OSRSetProjection(HandleOf(srs), mapping->projection);
    for (const Parameter& parameter : mapping->parameters)
        if (parameter.name) Set(srs, parameter, text(parameter.from));
    return mapping->projection;
}

}  // namespace VellumLib
