// What the standard asks of the maps of a PDF, and two dialects on one page.

#include "GeoPdfFiles.h"
#include "LogCapture.h"
#include "TempFolder.h"

#include <MapAnchor/BGeoPDFCheck.h>
#include <MapAnchor/BMapAnchor.h>
#include <Tellurion/BCoordSys.h>

#include <gtest/gtest.h>

#include <memory>

namespace MapAnchor {
namespace {

using namespace Tellurion;
using GeoPdf::LGIDict;
using GeoPdf::Viewport;

/// The ids of the findings, those of warnings in brackets.
std::string Findings(const std::string& pdf, std::string* places = nullptr) {
    const TempFolder folder;
    std::string ids;
    for (const BDiagnostic& finding : BGeoPDFCheck::Of(BString(folder.Write("map.pdf", pdf)))) {
        const std::string id = finding.GetId().StdStr();
        const bool warns = finding.GetSeverity() == BDiagnostic::ESeverity::Warning;
        ids += (ids.empty() ? "" : " ") + (warns ? "(" + id + ")" : id);
        if (places) *places += finding.GetPlace().StdStr() + ";";
    }
    return ids;
}

TEST(PdfCheck, FindsWhatBreaksTheStandard) {
    const struct {
        const char* name;
        std::string pdf;
        const char* ids;
    } rows[] = {
        {"right", Viewport().Text(), ""},
        {"in place", Viewport{.measure_value = Viewport().Measure()}.Text(), ""},
        {"corners of the box in another order, and points to match",
         Viewport{.box = "[0 792 612 0]", .lpts = "[0 1 0 0 1 0 1 1]"}.Text(), ""},
        {"no measure", Viewport{.measure_value = "99 0 R"}.Text(), "pdf-map-unreadable"},
        {"box without extent", Viewport{.box = "[5 5 5 9]"}.Text(), "pdf-box"},
        {"box beyond the page", Viewport{.box = "[0 0 700 792]"}.Text(), "(pdf-box)"},
        {"box of strings", Viewport{.box = "[(0)(0)(612)(792)]"}.Text(), "pdf-key-type"},
        {"no system", Viewport{.gcs_value = "99 0 R"}.Text(), "pdf-key-missing pdf-map-unreadable"},
        {"no code or text", Viewport{.system = "/Type /GEOGCS"}.Text(), "pdf-key-missing pdf-map-unreadable"},
        {"another type", Viewport{.system = "/Type /LOCAL_CS /EPSG 4326"}.Text(), "pdf-system"},
        {"type of another text", Viewport{.system = "/Type /GEOGCS /WKT (" + GeoPdf::kUtm33 + ")"}.Text(),
         "pdf-system"},
        {"text and code differ",
         Viewport{.system = "/Type /PROJCS /EPSG 32632 /WKT (" + GeoPdf::kUtm33 + ")"}.Text(),
         "pdf-systems-differ"},
        {"text and code agree",
         Viewport{.system = "/Type /PROJCS /EPSG 32633 /WKT (" + GeoPdf::kUtm33 + ")"}.Text(), ""},
        {"points of the page outside", Viewport{.lpts = "[0 0 0 2 1 2 1 0]"}.Text(), "pdf-unit-square"},
        {"outline outside", Viewport{.bounds = "/Bounds [0 0 0 1 612 1 1 0]"}.Text(), "pdf-unit-square"},
        {"longitude first", Viewport{.gpts = "[120 15 121 15 121 16 120 16]"}.Text(), "pdf-points"},
        {"beyond the antimeridian", Viewport{.gpts = "[47 179.5 48 179.5 48 180.5 47 180.5]"}.Text(),
         "(pdf-points)"},
        {"across the antimeridian", Viewport{.gpts = "[47 179.5 48 179.5 48 -179.5 47 -179.5]"}.Text(), ""},
        {"latitude and longitude exchanged", Viewport{.gpts = "[15 47 15 48 16 48 16 47]"}.Text(),
         "pdf-mirrored"},
        {"another count", Viewport{.gpts = "[47 15 48 15 48 16]"}.Text(), "pdf-points"},
        {"on a line", Viewport{.lpts = "[0 0 0 1 0 0.5 0 0.25]"}.Text(), "pdf-points"},
        {"units", Viewport{.bounds = "/PDU [/M /SQM /KNOT]"}.Text(), "pdf-key-type"},
        {"a damaged map of the other dialect",
         Viewport{.page = "/MediaBox [0 0 612 792] /LGIDict [<< /Type /LGIDict >>]"}.Text(),
         "pdf-map-unreadable"},
        {"no map", PagePdf("/MediaBox [0 0 9 9]").Text(), ""},
        {"no PDF", "no PDF", "pdf-map-unreadable"},
    };
    for (const auto& [name, pdf, ids] : rows)
        EXPECT_EQ(Findings(pdf), ids) << name;
    std::string places;
    Findings(Viewport{.more_viewports = Viewport{.box = "[1 1 1 1]"}.Entry()}.Text(), &places);
    EXPECT_EQ(places, "page 1, VP 2/BBox;");
}

TEST(PdfCheck, DialectsThatDisagreeAreReported) {
    // The corners of the other dialect's matrix, on a page of 600 by 800 points.
    const std::unique_ptr<BCoordSys> utm(BCoordSys::FromEPSGCode("32633"));
    std::string gpts = "[";
    for (const auto& [x, y] :
         {std::pair{400000, 5200000}, {400000, 5201600}, {401200, 5201600}, {401200, 5200000}}) {
        const BPoint place = utm->ConvertToGeodetic(BPoint(x, y, 0));
        gpts += BString::Format(" %.12f %.12f", place.y, place.x).StdStr();
    }
    const auto page = [&](const LGIDict& other) {
        return Viewport{.page = other.page + " /LGIDict [" + other.Entry() + "]",
                        .box = "[0 0 600 800]",
                        .gpts = gpts + "]",
                        .system = "/Type /PROJCS /EPSG 32633"}
            .Text();
    };
    EXPECT_EQ(Findings(page({})), "");
    const std::string moved = page({.ctm = "/CTM [(2) (0) (0) (2) (400300) (5200400)]"});
    EXPECT_EQ(Findings(moved), "pdf-dialects-differ");

    const TempFolder folder;
    const BString file(folder.Write("map.pdf", moved));
    BParamList params;
    params.SetInteger(BMapAnchor::kValPDFWide, 1);
    BGeoReference reference;
    const LogCapture log;
    BMapAnchor::Read(EReferenceType::GeoPDF, file, reference, 600, 800, EMathTransformType::Affine, 0,
                     &params);
    ASSERT_FALSE(log.lines.empty());
    EXPECT_NE(log.lines.back().find("500.0 m away; \"VP\" is read"), std::string::npos) << log.lines.back();
    BMapAnchor::Save(EReferenceType::GeoPDF, file, reference, 600, 800, BString(), 0, &params);
    EXPECT_EQ(Findings(TempFolder::Slurp(file.StdStr())), "") << "a save leaves one of them";
}

}  // namespace
}  // namespace MapAnchor
