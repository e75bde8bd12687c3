#include <MapAnchor/BGeoPDFTraits.h>

#include <MapAnchor/BGeoPDFPages.h>

#include "PdfFunctions.h"
#include "PdfParameters.h"
#include "common/policy/DiagnosticIds.h"
#include "common/policy/DiagnosticParts.h"

namespace MapAnchor {

using Tellurion::BString;

BGeoPDFTraits BGeoPDFTraits::Of(const BString& path) {
    return TraitsOfFile(path);
}

std::vector<BDiagnostic> BGeoPDFTraits::RewriteLosses() const {
    std::vector<BDiagnostic> losses;
    const auto add = [&losses](const char* id, const BString& text) {
        losses.push_back(DiagnosticParts{.id = id, .text = text}.Make());
    };
    if (Signed)
        add(DiagnosticId::kPdfSigned,
            "the digital signature of the file breaks when the whole file is written");
    if (!Conformance.IsEmpty())
        add(DiagnosticId::kPdfArchive, BString("the file does not conform to ") + Conformance +
                                           " any more when the whole file is written");
    if (Linearized)
        add(DiagnosticId::kPdfLinearized,
            "the file is not linearized any more when the whole file is written");
    if (!Version.IsEmpty() && Version.StdStr().compare(0, 2, "1.") != 0)
        add(DiagnosticId::kPdfVersion,
            BString("the file is of version ") + Version +
                " and gets the header of an older one when the whole file is written");
    return losses;
}

std::vector<BDiagnostic> BGeoPDFTraits::ChangeRemarks() const {
    if (!Locked) return {};
    return {DiagnosticParts{.id = DiagnosticId::kPdfLocked,
                            .text = "a signature certifies the file and allows no changes; viewers report "
                                    "the new reference as one"}
                .Make()};
}

bool BGeoPDFTraits::WantsUpdate() const {
    return Known && !Encrypted && (Size >= kLargeFile || Tagged || !RewriteLosses().empty());
}

BGeoPDFPage BGeoPDFTraits::DescribeTarget(const BString& file, int number) const {
    // What our own reader does not open is for the parser, and so for the rules.
    if (!Known) return BGeoPDFPage::Describe(file).InPoints();
    Tellurion::BParamList page_alone;
    page_alone.SetInteger(PdfParameters::kPage, number);
    BGeoPDFPage page = BGeoPDFPages::Describe(file, &page_alone).Pages.front().Page;
    page.Encrypted = page.Encrypted || Encrypted;
    return page.InPoints();
}

}  // namespace MapAnchor
