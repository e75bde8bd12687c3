#include "names/ErMapperProjections.h"

#include "names/ErMapperOwnDatums.h"
#include "names/ProjectionSource.h"

#include <algorithm>
#include <cmath>
#include <map>
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
        rows_.push_back(&row);
    std::stable_partition(rows_.begin(), rows_.end(),
                          [](const ErMapperProjection* row) { return IsUtmZone(row->name); });
    std::map<std::string_view, int> kinds;
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        const auto [kind, is_new] = kinds.try_emplace(rows_[i]->method);
        if (is_new) kind->second = PJ::ReadProjection(*rows_[i]).GetKind();
        places_[kind->second].push_back({std::remainder(rows_[i]->CentralMeridian(), 360.0), i});
    }
    entries_.resize(rows_.size());
    for (auto& [kind, places] : places_)
        std::ranges::sort(places, {}, &Place::meridian);
}

const ErMapperProjections::Entry* ErMapperProjections::EntryOf(std::size_t row) const {
    const std::lock_guard lock(mutex_);
    if (!entries_[row])
        entries_[row] = std::make_unique<Entry>(
            Entry{rows_[row], PJ::ReadProjection(*rows_[row]), OwnDatumOf(*rows_[row])});
    return entries_[row].get();
}

std::vector<const ErMapperProjections::Entry*> ErMapperProjections::All() const {
    std::vector<const Entry*> entries;
    for (std::size_t row = 0; row < rows_.size(); ++row)
        entries.push_back(EntryOf(row));
    return entries;
}

void ErMapperProjections::CollectAround(double meridian, int kind, std::vector<std::size_t>& found) const {
    const auto places = places_.find(kind);
    if (places == places_.end()) return;
    auto place = std::ranges::lower_bound(places->second, meridian - kMargin, {}, &Place::meridian);
    for (; place != places->second.end() && place->meridian <= meridian + kMargin; ++place)
        found.push_back(place->row);
}

std::vector<const ErMapperProjections::Entry*> ErMapperProjections::FindNearlyEqual(
    const PJ::CProjection& projection) const {
    std::vector<std::size_t> near;
    const double meridian = MeridianOf(projection);
    CollectAround(meridian, projection.GetKind(), near);
    // The meridian opposite of Greenwich has two numbers.
    if (std::abs(meridian) > 179.0)
        CollectAround(meridian - std::copysign(360.0, meridian), projection.GetKind(), near);
    std::ranges::sort(near);
    std::vector<const Entry*> found;
    for (const std::size_t row : near)
        if (const Entry* const entry = EntryOf(row); entry->projection.IsNearlyEqual(projection))
            found.push_back(entry);
    return found;
}

}  // namespace GeoCalc::DB
