#include <MapAnchor/BSavingProof.h>

#include "SavingProof.h"

namespace MapAnchor {

using Tellurion::BString;

BSavingProof::BSavingProof() : parts_(std::make_shared<const Parts>()) {}
BSavingProof::BSavingProof(std::shared_ptr<const Parts> parts) : parts_(std::move(parts)) {}
BSavingProof::BSavingProof(const BSavingProof&) = default;
BSavingProof& BSavingProof::operator=(const BSavingProof&) = default;
BSavingProof::~BSavingProof() = default;

bool BSavingProof::IsRead() const {
    return parts_->is_read;
}

bool BSavingProof::IsExact() const {
    return parts_->is_exact;
}

bool BSavingProof::IsConfirmedByGdal() const {
    return parts_->is_confirmed;
}

double BSavingProof::GetPixels() const {
    return parts_->pixels;
}

double BSavingProof::GetMetres() const {
    return parts_->metres;
}

bool BSavingProof::IsSameSystem() const {
    return parts_->is_same_system;
}

double BSavingProof::GetSystemMetres() const {
    return parts_->system_metres;
}

BString BSavingProof::GetText() const {
    return BString(parts_->text);
}

const std::vector<BDiagnostic>& BSavingProof::GetDiagnostics() const {
    return parts_->diagnostics;
}

}  // namespace MapAnchor
