#include "Truth.h"

#include <proj_experimental.h>

#include <cmath>
#include <cstring>
#include <numbers>
#include <random>
#include <string_view>

namespace sweep {
namespace {

constexpr double kDegree = std::numbers::pi / 180.0;
constexpr double kMetresPerDegree = 111'319.0;

bool UnitOf(PJ* crs, double& factor) {
    const Object axes(proj_crs_get_coordinate_system(Context(), crs));
    return axes && proj_cs_get_axis_info(Context(), axes.get(), 0, nullptr, nullptr, nullptr, &factor,
                                         nullptr, nullptr, nullptr);
}

Object WithoutShift(Object crs) {
    if (crs && proj_get_type(crs.get()) == PJ_TYPE_BOUND_CRS)
        crs.reset(proj_get_source_crs(Context(), crs.get()));
    return crs;
}

Object HorizontalOf(PJ* whole) {
    Object crs = WithoutShift(Object(proj_clone(Context(), whole)));
    if (crs && proj_get_type(crs.get()) == PJ_TYPE_COMPOUND_CRS)
        crs = WithoutShift(Object(proj_crs_get_sub_crs(Context(), crs.get(), 0)));
    if (!crs) return nullptr;
    Object flat(proj_crs_demote_to_2D(Context(), nullptr, crs.get()));
    return flat ? std::move(flat) : std::move(crs);
}

/// The geographic system that the horizontal one is or is derived from.
Object BaseOf(PJ* horizontal) {
    const bool derived = proj_crs_is_derived(Context(), horizontal) != 0;
    return Object(derived ? proj_get_source_crs(Context(), horizontal) : proj_clone(Context(), horizontal));
}

/// The base with the shift to WGS 84 that a text states.
Object WithShiftOf(PJ* whole, PJ* base) {
    const Object part(proj_get_type(whole) == PJ_TYPE_COMPOUND_CRS ? proj_crs_get_sub_crs(Context(), whole, 0)
                                                                   : proj_clone(Context(), whole));
    if (!part || proj_get_type(part.get()) != PJ_TYPE_BOUND_CRS) return nullptr;
    const Object hub(proj_get_target_crs(Context(), part.get()));
    const Object shift(proj_crs_get_coordoperation(Context(), part.get()));
    return Object(hub && shift ? proj_crs_create_bound_crs(Context(), base, hub.get(), shift.get())
                               : nullptr);
}

Object Operation(PJ* from, PJ* to) {
    const Object raw(proj_create_crs_to_crs_from_pj(Context(), from, to, nullptr, nullptr));
    return Object(raw ? proj_normalize_for_visualization(Context(), raw.get()) : nullptr);
}

/// The system itself, or where PROJ is older than 9.6 the one that its definition means: PROJ then
/// computes the two methods on the sphere of equal area as if they were on the ellipsoid.
Object AsDefined(Object crs) {
    const Object conversion(proj_crs_get_coordoperation(Context(), crs.get()));
    const char* method = nullptr;
    if (!conversion ||
        !proj_coordoperation_get_method_info(Context(), conversion.get(), &method, nullptr, nullptr) ||
        !std::string_view(method).ends_with("Equal Area (Spherical)"))
        return crs;
    const char* words = proj_as_proj_string(Context(), crs.get(), PJ_PROJ_4, nullptr);
    if (!words || std::strstr(words, "+R_A")) return crs;
    Object on_sphere(proj_create(Context(), (std::string(words) + " +R_A").c_str()));
    return on_sphere ? std::move(on_sphere) : std::move(crs);
}

Figure FigureOf(PJ* base) {
    Figure figure;
    const Object ellipsoid(proj_get_ellipsoid(Context(), base));
    const Object meridian(proj_get_prime_meridian(Context(), base));
    double longitude = 0.0;
    double factor = 0.0;
    if (ellipsoid)
        proj_ellipsoid_get_parameters(Context(), ellipsoid.get(), &figure.semi_major, nullptr, nullptr,
                                      &figure.inverse_flattening);
    if (meridian) proj_prime_meridian_get_parameters(Context(), meridian.get(), &longitude, &factor, nullptr);
    figure.prime_meridian = longitude * factor / kDegree;
    return figure;
}

}  // namespace

PJ_CONTEXT* Context() {
    static thread_local const std::unique_ptr<PJ_CONTEXT, decltype(&proj_context_destroy)> context = [] {
        PJ_CONTEXT* made = proj_context_create();
        proj_log_level(made, PJ_LOG_NONE);
        return std::unique_ptr<PJ_CONTEXT, decltype(&proj_context_destroy)>(made, proj_context_destroy);
    }();
    return context.get();
}

Truth::Truth(const std::string& text) : whole_(proj_create(Context(), text.c_str())) {
    if (!whole_) return;
    horizontal_ = HorizontalOf(whole_.get());
    if (horizontal_) base_ = BaseOf(horizontal_.get());
    if (!base_) return;
    horizontal_ = AsDefined(std::move(horizontal_));
    figure_ = FigureOf(base_.get());
    double unit = kDegree;
    UnitOf(base_.get(), unit);
    degrees_per_base_unit_ = unit / kDegree;
    UnitOf(horizontal_.get(), unit);
    const bool projected = proj_get_type(horizontal_.get()) == PJ_TYPE_PROJECTED_CRS;
    metres_per_unit_ = projected ? unit : unit / kDegree * kMetresPerDegree;
    if (proj_crs_is_derived(Context(), horizontal_.get()))
        projection_ = Operation(base_.get(), horizontal_.get());
}

bool Truth::Project(Probe& probe) const {
    probe.x = probe.longitude / degrees_per_base_unit_;
    probe.y = probe.latitude / degrees_per_base_unit_;
    probe.back_longitude = probe.longitude;
    probe.back_latitude = probe.latitude;
    if (!proj_crs_is_derived(Context(), horizontal_.get())) return true;
    if (!projection_) return false;
    const PJ_COORD to = proj_trans(projection_.get(), PJ_FWD, proj_coord(probe.x, probe.y, 0, HUGE_VAL));
    const PJ_COORD back = proj_trans(projection_.get(), PJ_INV, to);
    probe.x = to.xy.x;
    probe.y = to.xy.y;
    probe.back_longitude = back.xy.x * degrees_per_base_unit_;
    probe.back_latitude = back.xy.y * degrees_per_base_unit_;
    return std::isfinite(to.xy.x) && std::isfinite(to.xy.y) && std::isfinite(back.xy.x) &&
           std::isfinite(back.xy.y);
}

std::optional<Probe> Truth::OnWgs84(double longitude, double latitude) const {
    const Object wgs84(proj_create(Context(), "EPSG:4326"));
    const Object shifted = WithShiftOf(whole_.get(), base_.get());
    const Object way = Operation(shifted ? shifted.get() : base_.get(), wgs84.get());
    if (!way) return std::nullopt;
    const PJ_COORD from =
        proj_coord(longitude / degrees_per_base_unit_, latitude / degrees_per_base_unit_, 0, HUGE_VAL);
    const PJ_COORD to = proj_trans(way.get(), PJ_FWD, from);
    if (!std::isfinite(to.xy.x) || !std::isfinite(to.xy.y)) return std::nullopt;
    return Probe{to.xy.x, to.xy.y, to.xy.x, to.xy.y};
}

std::vector<Probe> Truth::OnWgs84(const std::vector<Probe>& probes) const {
    const Object wgs84(proj_create(Context(), "EPSG:4326"));
    const Object way = Operation(horizontal_.get(), wgs84.get());
    std::vector<Probe> moved;
    for (const Probe& probe : probes) {
        if (!way) break;
        const PJ_COORD to = proj_trans(way.get(), PJ_FWD, proj_coord(probe.x, probe.y, 0, HUGE_VAL));
        if (std::isfinite(to.xy.x) && std::isfinite(to.xy.y))
            moved.push_back({to.xy.x, to.xy.y, probe.x, probe.y});
    }
    return moved;
}

std::vector<Probe> Truth::Probes(int count) const {
    double west = -180;
    double south = -80;
    double east = 180;
    double north = 80;
    proj_get_area_of_use(Context(), whole_.get(), &west, &south, &east, &north, nullptr);
    if (east < west) east += 360.0;
    std::mt19937 random(static_cast<unsigned>(count));  // always the same positions
    std::uniform_real_distribution<double> part(0.05, 0.95);
    std::vector<Probe> probes;
    for (int i = 0; i < count; ++i) {
        Probe probe;
        probe.longitude = west + part(random) * (east - west) - figure_.prime_meridian;
        if (probe.longitude > 180.0) probe.longitude -= 360.0;
        probe.latitude = south + part(random) * (north - south);
        if (Project(probe)) probes.push_back(probe);
    }
    return probes;
}

std::string Truth::BaseText() const {
    const char* text = proj_as_wkt(Context(), base_.get(), PJ_WKT2_2019, nullptr);
    return text ? text : "";
}

std::vector<ListedSystem> ListSystems() {
    constexpr PJ_TYPE kTypes[] = {PJ_TYPE_PROJECTED_CRS, PJ_TYPE_GEOGRAPHIC_2D_CRS, PJ_TYPE_GEOGRAPHIC_3D_CRS,
                                  PJ_TYPE_COMPOUND_CRS};
    std::unique_ptr<PROJ_CRS_LIST_PARAMETERS, decltype(&proj_get_crs_list_parameters_destroy)> parameters(
        proj_get_crs_list_parameters_create(), proj_get_crs_list_parameters_destroy);
    parameters->types = kTypes;
    parameters->typesCount = std::size(kTypes);
    int count = 0;
    PROJ_CRS_INFO** list = proj_get_crs_info_list_from_database(Context(), "EPSG", parameters.get(), &count);
    std::vector<ListedSystem> systems;
    for (int i = 0; i < count; ++i)
        if (!list[i]->deprecated) systems.push_back({list[i]->code, list[i]->name, list[i]->type});
    proj_crs_info_list_destroy(list);
    return systems;
}

}  // namespace sweep
