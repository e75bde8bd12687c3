#include <MapAnchor/BSavingOptions.h>

#include <MapAnchor/BMapAnchor.h>

namespace MapAnchor {

using Tellurion::BParamList;
using Tellurion::BString;
using Tellurion::EReferenceType;

struct BSavingOptions::State {
    bool has_type = false;
    EReferenceType type = EReferenceType::Reserved;
    unsigned int flags = 0;
    long width = 0;
    long height = 0;
    BString image_name;
    bool centre_anchored = false;
    BParamList params;
    bool overwrites = true;
    std::vector<Tellurion::BControlPoint> control_points;
    bool syncs = true;
    bool verifies = true;
    double tolerance_pixels = 0.001;
    double tolerance_metres = 0.001;
    bool requires_exact = false;
};

BSavingOptions::BSavingOptions() {
    auto state = std::make_shared<State>();
    state->params.SetInteger(BMapAnchor::kValErsCodes, 1);
    state_ = std::move(state);
}

BSavingOptions::BSavingOptions(const BSavingOptions&) = default;
BSavingOptions& BSavingOptions::operator=(const BSavingOptions&) = default;
BSavingOptions::~BSavingOptions() = default;

BSavingOptions::State& BSavingOptions::Change() {
    auto copy = std::make_shared<State>(*state_);
    State& state = *copy;
    state_ = std::move(copy);
    return state;
}

void BSavingOptions::SetType(EReferenceType type) {
    State& state = Change();
    state.has_type = true;
    state.type = type;
}

bool BSavingOptions::HasType() const {
    return state_->has_type;
}

EReferenceType BSavingOptions::GetType() const {
    return state_->type;
}

void BSavingOptions::SetFlags(unsigned int flags) {
    Change().flags = flags;
}

unsigned int BSavingOptions::GetFlags() const {
    return state_->flags;
}

void BSavingOptions::SetSize(long width, long height) {
    State& state = Change();
    state.width = width;
    state.height = height;
}

long BSavingOptions::GetWidth() const {
    return state_->width;
}

long BSavingOptions::GetHeight() const {
    return state_->height;
}

void BSavingOptions::SetImageName(const BString& name) {
    Change().image_name = name;
}

BString BSavingOptions::GetImageName() const {
    return state_->image_name;
}

void BSavingOptions::SetCentreAnchored(bool centre) {
    Change().centre_anchored = centre;
}

bool BSavingOptions::IsCentreAnchored() const {
    return state_->centre_anchored;
}

void BSavingOptions::SetParams(const BParamList& params) {
    Change().params = params;
}

const BParamList& BSavingOptions::GetParams() const {
    return state_->params;
}

void BSavingOptions::SetOverwrites(bool overwrites) {
    Change().overwrites = overwrites;
}

bool BSavingOptions::Overwrites() const {
    return state_->overwrites;
}

void BSavingOptions::SetControlPoints(const std::vector<Tellurion::BControlPoint>& points) {
    Change().control_points = points;
}

const std::vector<Tellurion::BControlPoint>& BSavingOptions::GetControlPoints() const {
    return state_->control_points;
}

void BSavingOptions::SetSyncs(bool syncs) {
    Change().syncs = syncs;
}

bool BSavingOptions::Syncs() const {
    return state_->syncs;
}

void BSavingOptions::SetVerifies(bool verifies) {
    Change().verifies = verifies;
}

bool BSavingOptions::Verifies() const {
    return state_->verifies;
}

void BSavingOptions::SetTolerance(double pixels, double metres) {
    State& state = Change();
    state.tolerance_pixels = pixels;
    state.tolerance_metres = metres;
}

double BSavingOptions::GetTolerancePixels() const {
    return state_->tolerance_pixels;
}

double BSavingOptions::GetToleranceMetres() const {
    return state_->tolerance_metres;
}

void BSavingOptions::SetRequiresExact(bool requires_exact) {
    Change().requires_exact = requires_exact;
}

bool BSavingOptions::RequiresExact() const {
    return state_->requires_exact;
}

}  // namespace MapAnchor
