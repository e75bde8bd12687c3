#include "PdfRemarks.h"

#include "common/policy/DiagnosticIds.h"

namespace MapAnchor {

const char* IdOfPdfRemark(std::string_view line) {
    for (const char* id :
         {DiagnosticId::kPdfBeyondRules, DiagnosticId::kPdfNoSystem, DiagnosticId::kPdfNotANumber,
          DiagnosticId::kPdfPointsRounded, DiagnosticId::kPdfScale, DiagnosticId::kPdfUnits,
          DiagnosticId::kPdfDialectsDiffer, DiagnosticId::kPdfUnknownDatum, DiagnosticId::kPdfAntimeridian,
          DiagnosticId::kPdfArchive, DiagnosticId::kPdfLinearized, DiagnosticId::kPdfLocked,
          DiagnosticId::kPdfSigned, DiagnosticId::kPdfTagged, DiagnosticId::kPdfVersion}) {
        const std::string_view name = id;
        if (line.substr(0, name.size()) == name && line.substr(name.size(), 2) == ": ") return id;
    }
    return nullptr;
}

}  // namespace MapAnchor
