#include "Conversion.h"

#include <Tellurion/QuietGdal.h>

#include <ogr_spatialref.h>

#include <cmath>

using Tellurion::BCoordSys;
using Tellurion::BString;
using Tellurion::QuietGdal;

namespace {

/// False when no text of the system is understood.
bool Import(const BCoordSys& system, OGRSpatialReference& srs) {
    srs.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    for (const BString& text : {system.ToWKT(), system.ToPRJ()})
        if (!text.IsEmpty() && srs.importFromWkt(text.Utf8()) == OGRERR_NONE) return true;
    return false;
}

}  // namespace

Conversion::Conversion(const BCoordSys& from, const BCoordSys& to) {
    const QuietGdal quiet;
    OGRSpatialReference source;
    OGRSpatialReference target;
    if (Import(from, source) && Import(to, target))
        transformation_.reset(OGRCreateCoordinateTransformation(&source, &target));
}

Conversion::~Conversion() = default;
Conversion::Conversion(Conversion&&) noexcept = default;
Conversion& Conversion::operator=(Conversion&&) noexcept = default;

std::optional<Position> Conversion::Convert(const Position& position) const {
    const QuietGdal quiet;
    Position to = position;
    int done = FALSE;
    if (!transformation_ || !transformation_->Transform(1, &to.x, &to.y, nullptr, nullptr, &done) || !done)
        return std::nullopt;
    return std::isfinite(to.x) && std::isfinite(to.y) ? std::optional(to) : std::nullopt;
}

bool HasSameDefinition(const BCoordSys& a, const BCoordSys& b) {
    const QuietGdal quiet;
    OGRSpatialReference first;
    OGRSpatialReference second;
    return Import(a, first) && Import(b, second) && first.IsSame(&second);
}

std::string WellKnownText2(const BCoordSys& system) {
    const QuietGdal quiet;
    OGRSpatialReference srs;
    const char* const options[] = {"FORMAT=WKT2_2019", nullptr};
    char* text = nullptr;
    const bool done = Import(system, srs) && srs.exportToWkt(&text, options) == OGRERR_NONE && text;
    std::string result = done ? text : "";
    CPLFree(text);
    return result;
}
