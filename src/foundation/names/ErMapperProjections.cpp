#include "names/ErMapperProjections.h"

#include "names/ErMapperOwnDatums.h"
#include "names/ProjectionSource.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace GeoCalc::DB {
namespace {

/// Above the tolerance of CProjection::IsNearlyEqual.
constexpr double kMargin = 1e-5;

double MeridianOf(const PJ::CProjection& projection) {
    return std::remainder(projection.GetParameters().GetNumber("CENTRAL_MERIDIAN", 0.0), 360.0);
}

bool IsUtmZone(std::string_view name) {
    return name.size() == 6 && (name.starts_with("NUTM") || name.starts_with("SUTM"));
}

}  // namespace

const ErMapperProjections& ErMapperProjections::Instance() {
    static const auto* const instance = new ErMapperProjections;
    return *instance;
}

ErMapperProjections::ErMapperProjections() {
    for (const ErMapperProjection& row : ErMapperNames::Instance().Projections())
        entries_.push_back({&row, PJ::ReadProjection(row), OwnDatumOf(row)});
    std::stable_partition(entries_.begin(), entries_.end(),
                          [](const Entry& entry) { return IsUtmZone(entry.row->name); });
    for (std::size_t i = 0; i < entries_.size(); ++i)
        places_[entries_[i].projection.GetKind()].push_back({MeridianOf(entries_[i].projection), i});
    for (auto& [kind, places] : places_)
        std::ranges::sort(places, {}, &Place::meridian);
}

void ErMapperProjections::CollectAround(double meridian, const PJ::CProjection& projection,
                                        std::vector<const Entry*>& found) const {
    const auto places = places_.find(projection.GetKind());
    if (places == places_.end()) return;
    auto place = std::ranges::lower_bound(places->second, meridian - kMargin, {}, &Place::meridian);
    for (; place != places->second.end() && place->meridian <= meridian + kMargin; ++place)
        if (entries_[place->entry].projection.IsNearlyEqual(projection))
            found.push_back(&entries_[place->entry]);
}

std::vector<const ErMapperProjections::Entry*> ErMapperProjections::FindNearlyEqual(
    const PJ::CProjection& projection) const {
    std::vector<const Entry*> found;
    const double meridian = MeridianOf(projection);
    CollectAround(meridian, projection, found);
    // The meridian opposite of Greenwich has two numbers.
    if (std::abs(meridian) > 179.0)
        CollectAround(meridian - std::copysign(360.0, meridian), projection, found);
    std::ranges::sort(found);
    return found;
}

}  // namespace GeoCalc::DB
