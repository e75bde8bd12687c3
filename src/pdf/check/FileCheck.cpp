#include "PdfFunctions.h"

#include "PdfParameters.h"
#include "check/ViewportRules.h"
#include "common/policy/DiagnosticIds.h"
#include "common/policy/DiagnosticParts.h"
#include "import/PdfFailure.h"
#include "wide/ReadWideGeoPDF.h"
#include "wide/WideDocument.h"

#include <Tellurion/BGeoReference.h>
#include <Tellurion/BParamList.h>
#include <Tellurion/ThreadLog.h>

#include <memory>
#include <string>

namespace MapAnchor {

using Tellurion::BString;
using VellumLib::WideDocument;
using VellumLib::WideMap;
using VellumLib::WidePage;

namespace {

constexpr std::size_t kMaxFindings = 1'000;

class FileCheck {
public:
    explicit FileCheck(const BString& file) : file_(file) {}

    std::vector<BDiagnostic> Run() {
        const Tellurion::ThreadLog quiet;  // what a reader logs is among the findings
        try {
            auto document = std::make_unique<WideDocument>(file_.StdStr(), true);
            if (document->Pages().StatedCount() > 1)
                CheckPages(*document);
            else
                CheckPage(*document, 1);
        } catch (...) {
            Add(BDiagnostic::ESeverity::Error, DiagnosticId::kPdfMapUnreadable,
                VellumLib::CurrentPdfFailure().StdStr(), "");
        }
        return std::move(findings_);
    }

private:
    /// All of them where the whole file can be opened, else the first one.
    void CheckPages(WideDocument& first) {
        std::unique_ptr<WideDocument> whole;
        try {
            whole = std::make_unique<WideDocument>(file_.StdStr(), false);
        } catch (...) {
            CheckPage(first, 1);
            return Add(BDiagnostic::ESeverity::Warning, DiagnosticId::kPdfMapUnreadable,
                       "the other pages are not checked: " + VellumLib::CurrentPdfFailure().StdStr(), "");
        }
        for (std::size_t number = 1; number <= whole->Pages().Count(); ++number)
            CheckPage(*whole, static_cast<long>(number));
    }

    void CheckPage(WideDocument& document, long number) {
        if (findings_.size() >= kMaxFindings || static_cast<std::size_t>(number) > document.Pages().Count())
            return;
        const std::string place = "page " + std::to_string(number);
        const WidePage page = document.Pages().Page(static_cast<std::size_t>(number - 1));
        const std::vector<WideMap> maps = WideDocument::MapsOf(page);
        if (maps.empty()) return;
        for (const WideMap& map : maps) {
            const std::string entry =
                place + (map.lgi ? ", LGIDict " : ", VP ") + std::to_string(map.entry + 1);
            if (!map.lgi) {
                const auto viewport = page.dictionary["VP"].At(map.entry);
                const bool has_measure = static_cast<bool>(viewport["Measure"]);
                CheckViewport(page, viewport,
                              [&](BDiagnostic::ESeverity severity, const char* id, const std::string& text,
                                  const std::string& key) { Add(severity, id, text, entry + "/" + key); });
                if (!has_measure) continue;
            }
            if (map.lgi && !map.fault.empty())
                Add(BDiagnostic::ESeverity::Error, DiagnosticId::kPdfMapUnreadable, map.fault, entry);
        }
        CompareDialects(document, number, place);
    }

    /// What a read has to say about the map that it takes.
    void CompareDialects(WideDocument& document, long number, const std::string& place) {
        Tellurion::BParamList params;
        params.SetInteger(PdfParameters::kWide, 1);
        params.SetInteger(PdfParameters::kPage, static_cast<int>(number));
        Tellurion::BGeoReference reference;
        try {
            const WideReading reading =
                ReadWideGeoPDF(document, 0, reference, Tellurion::EMathTransformType::Affine, 0, 0, &params);
            for (const VellumLib::WideRemark& remark : reading.remarks)
                if (remark.id == DiagnosticId::kPdfDialectsDiffer)
                    Add(BDiagnostic::ESeverity::Error, DiagnosticId::kPdfDialectsDiffer, remark.text, place);
        } catch (...) {
            Add(BDiagnostic::ESeverity::Error, DiagnosticId::kPdfMapUnreadable,
                VellumLib::CurrentPdfFailure().StdStr(), place);
        }
    }

    void Add(BDiagnostic::ESeverity severity, const char* id, const std::string& text,
             const std::string& place) {
        if (findings_.size() >= kMaxFindings) return;
        findings_.push_back(DiagnosticParts{
            .id = id, .severity = severity, .text = BString(text), .file = file_, .place = BString(place)}
                                .Make());
    }

    const BString& file_;
    std::vector<BDiagnostic> findings_;
};

}  // namespace

std::vector<BDiagnostic> CheckFile(const BString& file) {
    return FileCheck(file).Run();
}

}  // namespace MapAnchor
