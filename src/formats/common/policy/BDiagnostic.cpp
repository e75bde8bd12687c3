#include <MapAnchor/BDiagnostic.h>

#include "common/policy/DiagnosticParts.h"

#include <utility>

namespace MapAnchor {

using Tellurion::BString;

BDiagnostic::BDiagnostic() : parts_(std::make_shared<const Parts>(Parts{.severity = ESeverity::Note})) {}
BDiagnostic::BDiagnostic(std::shared_ptr<const Parts> parts) : parts_(std::move(parts)) {}
BDiagnostic::BDiagnostic(const BDiagnostic&) = default;
BDiagnostic& BDiagnostic::operator=(const BDiagnostic&) = default;
BDiagnostic::~BDiagnostic() = default;

BString BDiagnostic::GetId() const {
    return parts_->id;
}

BDiagnostic::ESeverity BDiagnostic::GetSeverity() const {
    return parts_->severity;
}

BString BDiagnostic::GetText() const {
    return parts_->text;
}

BString BDiagnostic::GetFile() const {
    return parts_->file;
}

long BDiagnostic::GetLine() const {
    return parts_->line;
}

long long BDiagnostic::GetByteOffset() const {
    return parts_->offset;
}

BString BDiagnostic::GetPlace() const {
    return parts_->place;
}

}  // namespace MapAnchor
