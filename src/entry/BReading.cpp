#include <MapAnchor/BReading.h>

#include "ReadingState.h"
#include "ReadingSteps.h"
#include "common/points/ExactPoints.h"

#include <utility>

namespace MapAnchor {

using Tellurion::BGeoReference;
using Tellurion::BString;

BReading::BReading(std::shared_ptr<const ReadingState> state) : state_(std::move(state)) {}
BReading::BReading(const BReading&) = default;
BReading& BReading::operator=(const BReading&) = default;
BReading::~BReading() = default;

BReading BReading::Of(const BString& file, const BReadingOptions& options) {
    auto state = std::make_shared<ReadingState>();
    state->file = file;
    ReadInSteps(options, *state);
    return BReading(std::move(state));
}

BReading::EOutcome BReading::OutcomeOf(const BString& failureType) {
    static constexpr std::pair<const char*, EOutcome> kOutcomes[] = {
        {"BFileContentNotValidException", EOutcome::NoReference},
        {"BUnsupportedFileTypeException", EOutcome::Refused},
        {"BGeoReferenceNotSupportedException", EOutcome::Refused},
        {"BFileNotFoundException", EOutcome::NotFound},
        {"BFileAccessException", EOutcome::NoAccess},
        {"std::bad_alloc", EOutcome::OutOfMemory}};
    for (const auto& [type, outcome] : kOutcomes)
        if (failureType == BString(type)) return outcome;
    return EOutcome::Invalid;
}

BReading::EOutcome BReading::GetOutcome() const {
    return state_->outcome;
}

bool BReading::HasReference() const {
    return state_->outcome == EOutcome::Read;
}

const BGeoReference& BReading::GetReference() const {
    return state_->reference;
}

BString BReading::GetFile() const {
    return state_->file;
}

BString BReading::GetUsedFile() const {
    return state_->used_file;
}

std::vector<BString> BReading::GetFiles() const {
    return state_->files;
}

BString BReading::GetKind() const {
    return state_->kind ? state_->kind->name : "";
}

bool BReading::IsByName() const {
    return state_->by_name;
}

bool BReading::IsSidecar() const {
    return state_->kind && state_->kind->sidecar;
}

bool BReading::IsCentreAnchored() const {
    return state_->IsCentreAnchored();
}

long BReading::GetWidth() const {
    return state_->width;
}

long BReading::GetHeight() const {
    return state_->height;
}

std::vector<Tellurion::BControlPoint> BReading::GetControlPoints() const {
    return ExactPoints::Join(state_->reference.PointPairVector, state_->exact_points);
}

const BGeoPDFPage* BReading::GetPdfPage() const {
    return state_->page ? &*state_->page : nullptr;
}

const std::vector<BDiagnostic>& BReading::GetDiagnostics() const {
    return state_->diagnostics;
}

std::vector<BReading::Origin> BReading::GetOrigins() const {
    return state_->origins;
}

BString BReading::GetFailureText() const {
    return state_->failure ? state_->failure->Text() : BString();
}

BString BReading::GetFailureType() const {
    return state_->failure ? state_->failure->type : BString();
}

BString BReading::GetFailureMessage() const {
    return state_->failure ? state_->failure->message : BString();
}

BString BReading::GetFailureSource() const {
    return state_->failure ? state_->failure->source : BString();
}

BString BReading::GetFailureDetail() const {
    return state_->failure ? state_->failure->detail : BString();
}

void BReading::ThrowFailure() const {
    if (state_->failure) std::rethrow_exception(state_->failure->error);
}

}  // namespace MapAnchor
