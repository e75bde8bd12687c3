#include <MapAnchor/BReferenceSources.h>

#include "ReadingSources.h"
#include "ReadingSteps.h"

#include <utility>

namespace MapAnchor {

using Tellurion::BString;

BReferenceSource::BReferenceSource(std::shared_ptr<const ReferenceSourceState> state)
    : state_(std::move(state)) {}
BReferenceSource::BReferenceSource(const BReferenceSource&) = default;
BReferenceSource& BReferenceSource::operator=(const BReferenceSource&) = default;
BReferenceSource::~BReferenceSource() = default;

BString BReferenceSource::GetKind() const {
    return state_->kind;
}

std::vector<BString> BReferenceSource::GetFiles() const {
    return state_->reading->files;
}

const BReading& BReferenceSource::GetReading() const {
    return state_->shown;
}

bool BReferenceSource::Wins() const {
    return state_->wins;
}

bool BReferenceSource::WinsInGdal() const {
    return state_->wins_in_gdal;
}

double BReferenceSource::GetDistancePixels() const {
    return state_->pixels;
}

double BReferenceSource::GetDistanceMetres() const {
    return state_->metres;
}

BReferenceSources::BReferenceSources(std::shared_ptr<const ReferenceSourcesState> state)
    : state_(std::move(state)) {}
BReferenceSources::BReferenceSources(const BReferenceSources&) = default;
BReferenceSources& BReferenceSources::operator=(const BReferenceSources&) = default;
BReferenceSources::~BReferenceSources() = default;

BReferenceSources BReferenceSources::Of(const BString& raster, const BReadingOptions& options) {
    auto state = std::make_shared<ReferenceSourcesState>();
    state->raster = raster;
    state->reading->file = raster;
    SourceList sources;
    ReadInSteps(options, *state->reading, &sources);
    for (auto& source : sources)
        state->sources.emplace_back(std::move(source));
    return BReferenceSources(std::move(state));
}

BString BReferenceSources::GetRaster() const {
    return state_->raster;
}

const std::vector<BReferenceSource>& BReferenceSources::GetSources() const {
    return state_->sources;
}

const BReading& BReferenceSources::GetReading() const {
    return state_->shown;
}

}  // namespace MapAnchor
