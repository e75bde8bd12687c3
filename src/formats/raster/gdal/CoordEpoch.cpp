#include "raster/gdal/CoordEpoch.h"

#include <Tellurion/Numbers.h>

#include <cpl_vsi.h>

#include <string>

namespace MapAnchor {

using Tellurion::BString;

namespace {

constexpr const char* kMetadata = "COORDINATEMETADATA[";
constexpr const char* kEpoch = ",EPOCH[";

std::string Export(const OGRSpatialReference& system, const char* const* options) {
    char* text = nullptr;
    const bool failed = system.exportToWkt(&text, options) != OGRERR_NONE;
    const std::unique_ptr<char, decltype(&VSIFree)> owner(text, VSIFree);
    return failed || !text ? std::string() : text;
}

/// GDAL itself falls back to version 2 only where PROJ reports its failures.
std::string Export(const OGRSpatialReference& system) {
    const char* const kVersion2[] = {"FORMAT=WKT2_2019", nullptr};
    std::string text = Export(system, nullptr);
    return text.empty() ? Export(system, kVersion2) : text;
}

}  // namespace

BString TextOf(const OGRSpatialReference* system) {
    if (!system || system->IsEmpty()) return {};
    const std::string plain = Export(*system);
    const double epoch = system->GetCoordinateEpoch();
    if (!(epoch > 0.0) || plain.empty() || plain.starts_with(kMetadata)) return BString(plain);
    return BString(kMetadata + plain + kEpoch + Tellurion::PrintShortest(epoch) + "]]");
}

std::unique_ptr<OGRSpatialReference> SystemAtEpoch(const BString& text, double epoch) {
    std::string plain = text.StdStr();
    const std::size_t end = plain.rfind(kEpoch);
    if (plain.starts_with(kMetadata) && end != std::string::npos) {
        plain.resize(end);
        plain.erase(0, std::string_view(kMetadata).size());
    }
    auto system = std::make_unique<OGRSpatialReference>();
    system->SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    if (system->importFromWkt(plain.c_str()) != OGRERR_NONE) return nullptr;
    system->SetCoordinateEpoch(epoch);
    return system;
}

}  // namespace MapAnchor
