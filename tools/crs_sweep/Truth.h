#pragma once

#include <proj.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

/// What PROJ itself says of a coordinate system, asked without this project's library.
namespace sweep {

struct PjDeleter {
    void operator()(PJ* object) const noexcept {
        proj_assign_context(object, nullptr);
        proj_destroy(object);
    }
};
using Object = std::unique_ptr<PJ, PjDeleter>;

PJ_CONTEXT* Context();  ///< the calling thread's, silent

/// One position in two notations: longitude and latitude on the system's own datum and prime
/// meridian, in degrees, and the system's own coordinates with the easting or longitude first.
struct Probe {
    double longitude = 0.0;
    double latitude = 0.0;
    double x = 0.0;
    double y = 0.0;
    double back_longitude = 0.0;  ///< of x and y: some projections are inverted by iteration
    double back_latitude = 0.0;
};

struct Figure {
    double semi_major = 0.0;
    double inverse_flattening = 0.0;
    double prime_meridian = 0.0;  ///< degrees east of Greenwich
};

/// The horizontal part of a coordinate reference system.
class Truth {
public:
    explicit Truth(const std::string& text);

    bool IsUsable() const { return horizontal_ && base_; }
    /// Fills x, y and the way back; false where the projection has no value.
    bool Project(Probe& probe) const;
    /// Longitude and latitude on WGS 84; empty without a way there.
    std::optional<Probe> OnWgs84(double longitude, double latitude) const;
    /// Of each that has a place there: longitude and latitude on WGS 84 and its x and y here.
    std::vector<Probe> OnWgs84(const std::vector<Probe>& probes) const;
    const Figure& GetFigure() const { return figure_; }
    /// Metres per unit of x, at the equator for degrees.
    double MetresPerUnit() const { return metres_per_unit_; }
    /// Positions spread over the area of use, with their coordinates.
    std::vector<Probe> Probes(int count) const;
    std::string BaseText() const;

private:
    Object whole_;
    Object horizontal_;
    Object base_;
    Object projection_;  ///< none for a geographic system
    Figure figure_;
    double metres_per_unit_ = 0.0;
    double degrees_per_base_unit_ = 1.0;
};

struct ListedSystem {
    std::string code;  ///< without the issuer
    std::string name;
    PJ_TYPE type = PJ_TYPE_UNKNOWN;
};

/// All current systems of EPSG that place positions: projected, geographic of two and three
/// axes, and compounds of these with heights.
std::vector<ListedSystem> ListSystems();

}  // namespace sweep
