// Geospatial PDF at the command line: the description of a page, and a PDF georeferenced in place.

#include "../pdf/import/GeoPdfFiles.h"
#include "RunTool.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <set>

namespace {

using nlohmann::json;
namespace fs = std::filesystem;

constexpr const char* kWorldFile = "2\n0\n0\n-2\n676001\n5241999\n";

class PdfInPlace : public testing::Test {
protected:
    PdfInPlace() {
        folder.Write("map.tfw", kWorldFile);
        folder.Write("map.prj", PrjOf("32632"));
        folder.Write("map.pdf", original);
    }
    std::set<std::string> Names() const {
        std::set<std::string> names;
        for (const auto& entry : fs::directory_iterator(folder / ""))
            names.insert(entry.path().filename());
        return names;
    }

    const ToolFolder folder;
    const std::string original = RichPdf(720, 360);
};

struct Fit {
    std::string options;
    double width;
    std::string members;
    const char* warning = "";
};

// Without a size the raster is the page at the resolution, and without a resolution the
// raster of that size fills the page.
TEST_F(PdfInPlace, SizeAndResolution) {
    const Fit fits[] = {
        {"", 720, R"("size":[720,360])", "is assumed"},
        {"--dpi 300", 3000, R"("size":[3000,1500])"},
        {"--size 3000x1500", 3000, R"("size":[3000,1500])"},
        {"--size 1440x720 --dpi 144", 1440, R"("size":[1440,720])"},
        {"--size 360x180 --dpi 72", 0, R"("size":[360,180])", "does not fill the page"},
        {"--size 3000x3000", 0, R"("size":[3000,3000])", "does not fill the page"},
    };
    for (const Fit& fit : fits) {
        folder.Write("map.pdf", original);
        const ToolRun run = folder.ExpectRun(
            "convert --overwrite --json %map.tfw %map.pdf " + fit.options, *fit.warning ? 3 : 0,
            fit.members +
                R"(,"written":["%map.pdf"],"coordSys":{"epsg":"EPSG:32632"},"points":[{},{},{},{}])",
            {fit.warning});
        if (*fit.warning) continue;
        EXPECT_TRUE(run.Ours()["proof"]["confirmedByGdal"].get<bool>());
        EXPECT_LT(run.Ours()["closeness"]["pixels"].get<double>(), 1e-3);
        EXPECT_LT(run.Ours()["closeness"]["metres"].get<double>(), 1e-2);
        const json back =
            folder.ExpectRun("--json --size 720x360 %map.pdf", 0).Objects().at(0)["geoTransform"];
        EXPECT_NEAR(back[0].get<double>(), 676000, 1e-2);
        EXPECT_NEAR(back[1].get<double>(), 2.0 * fit.width / 720, 1e-4);
    }
    // A PDF is a source as well.
    folder.Write("other.pdf", original);
    const ToolRun run = folder.ExpectRun("convert --overwrite --json %map.pdf %other.pdf", 0);
    EXPECT_LT(run.Ours()["closeness"]["pixels"].get<double>(), 1e-3);
}

TEST_F(PdfInPlace, TheOriginalIsKeptWhenAsked) {
    const fs::perms mode = fs::perms::owner_read | fs::perms::owner_write;
    fs::permissions(folder / "map.pdf", mode);
    folder.ExpectRun("convert --overwrite --backup --dpi 72 %map.tfw %map.pdf", 0);
    const std::string first = TempFolder::Slurp(folder / "map.pdf");
    folder.ExpectRun("convert --overwrite --backup --json %map.tfw %map.pdf", 3,
                     R"("kept":["%map.pdf.bak.1"])", {"the reference that the page has already is replaced"});
    folder.ExpectFile("map.pdf.bak", original);
    folder.ExpectFile("map.pdf.bak.1", first);
    EXPECT_EQ(fs::status(folder / "map.pdf").permissions(), mode);
    EXPECT_EQ(Names(),
              (std::set<std::string>{"map.pdf", "map.pdf.bak", "map.pdf.bak.1", "map.prj", "map.tfw"}));
}

TEST_F(PdfInPlace, ADryRunTouchesNothing) {
    const auto then = fs::last_write_time(folder / "");
    folder.ExpectRun("convert --overwrite --dry-run --backup --dpi 144 %map.tfw %map.pdf", 0, "",
                     {"would write ", "EPSG:32632", "676000", "media box 0 0 720 360",
                      "read back: at most 0.000 pixels, 0.000 m; the same system"});
    folder.ExpectFile("map.pdf", original);
    EXPECT_EQ(fs::last_write_time(folder / ""), then);
}

// A PDF counts longitudes up to 180 degrees, which are 200 grads.
TEST_F(PdfInPlace, BeyondTheDateLineThePlaceIsTheSame) {
    folder.Write("fiji.tfw", "0.001\n0\n0\n-0.001\n185\n-15\n");
    folder.Write("grads.tfw", "0.001\n0\n0\n-0.001\n205\n47\n");
    for (const auto& [name, system, status, size] :
         {std::tuple<std::string, const char*, int, const char*>{"fiji", "4326", 0, "107.3"},
          {"grads", "4807", 3, "74.2"}}) {
        folder.Write(name + ".prj", PrjOf(system));
        folder.ExpectRun(
            "convert --overwrite --dpi 72 %" + name + ".tfw %map.pdf", status, "",
            {"at most 0.000 pixels, 0.000 m; the same system; with longitudes a whole turn off"});
        folder.ExpectRun("info %map.pdf", status, "", {"pixel size   " + std::string(size)});
    }
    folder.Write("paris.tfw", "0.001\n0\n0\n-0.001\n0\n52\n");
    folder.ExpectRun("info --crs EPSG:4807 %paris.tfw --size 10x10", 0, "", {"(longitude 2.336"});
}

TEST_F(PdfInPlace, AnEndingInCapitalsAndALinkStayWhatTheyAre) {
    folder.Write("MAP.PDF", original);
    fs::create_hard_link(folder / "MAP.PDF", folder / "other");
    fs::create_symlink("MAP.PDF", folder / "link.pdf");
    folder.ExpectRun("convert --overwrite --dpi 72 %map.tfw %link.pdf", 0);
    EXPECT_TRUE(fs::is_symlink(folder / "link.pdf"));
    folder.ExpectRun("convert --overwrite %map.tfw %MAP.PDF", 3, "", {"is replaced"});
    EXPECT_TRUE(fs::equivalent(folder / "MAP.PDF", folder / "other"));
    EXPECT_EQ(Names(),
              (std::set<std::string>{"MAP.PDF", "link.pdf", "map.pdf", "map.prj", "map.tfw", "other"}));
}

struct Refusal {
    const char* words;  ///< behind convert --overwrite
    int status;
    const char* reason;
    std::string content = RichPdf(720, 360);  ///< empty for no file
};

bool Runs(const std::string& command) {
    return std::system((command + " >/dev/null 2>&1").c_str()) == 0;
}

TEST_F(PdfInPlace, AppendsWhereThatIsTheBetterWay) {
    if (!Runs("qpdf --linearize '" + (folder / "map.pdf") + "' '" + (folder / "lin.pdf") + "'"))
        GTEST_SKIP() << "needs qpdf";
    const std::string before = TempFolder::Slurp(folder / "lin.pdf");
    const struct {
        const char* options;
        int status;
        const char* said;
        bool appended;
    } rows[] = {
        {"--dry-run", 0, "[pdf-appended]", false},
        {"", 0, "[pdf-appended]", true},
        {"--verify --target-page 2", 0, "read back: at most 0.000 pixels", true},
        {"--no-incremental", 3, "[pdf-linearized]", false},
        {"--no-incremental --dry-run", 3, "[pdf-linearized]", false},
        {"--incremental", 0, "wrote", true},
    };
    for (const auto& [options, status, said, appended] : rows) {
        SCOPED_TRACE(options);
        folder.Write("lin.pdf", before);
        folder.ExpectRun("convert --overwrite --dpi 72 %map.tfw %lin.pdf " + std::string(options), status, "",
                         {said});
        const std::string now = TempFolder::Slurp(folder / "lin.pdf");
        EXPECT_EQ(now.substr(0, before.size()) == before && now != before, appended);
    }
}

// Signed by a key of its own, by other software, and checked by it again.
TEST_F(PdfInPlace, ASignatureStaysValidAndThePageAsItWas) {
    const std::string keys = folder / "keys";
    folder.Write("noise", std::string(200, 'n'));
    const std::string file = folder / "map.pdf";
    const std::string sign = "pdfsig -nssdir '" + keys + "' ";
    if (!Runs("mkdir '" + keys + "' && certutil -N -d '" + keys + "' --empty-password && certutil -S -d '" +
              keys + "' -n me -s CN=me -x -t CT,C,C -z '" + (folder / "noise") + "'") ||
        !Runs(sign + "-add-signature -nick me '" + file + "' '" + (folder / "signed.pdf") + "'") ||
        !Runs("mutool -v"))
        GTEST_SKIP() << "needs certutil, pdfsig and mutool";
    const auto rendered = [&] {
        EXPECT_TRUE(Runs("cd '" + (folder / "") +
                         "' && pdftoppm -r 36 -singlefile signed.pdf poppler && "
                         "mutool draw -r 36 -o mupdf.ppm signed.pdf 1"));
        return TempFolder::Slurp(folder / "poppler.ppm") + TempFolder::Slurp(folder / "mupdf.ppm");
    };
    const std::string pixels = rendered();
    folder.ExpectRun("convert --overwrite --dpi 72 %map.tfw %signed.pdf", 0, "", {"digital signature"});
    EXPECT_TRUE(Runs(sign + "'" + (folder / "signed.pdf") + "' | grep 'Signature is Valid'"));
    EXPECT_EQ(rendered(), pixels);
    folder.ExpectRun("info %signed.pdf", 0, "", {"EPSG:32632"});
}

TEST_F(PdfInPlace, RefusedWithoutTouchingTheFile) {
    folder.Write("bare.tfw", kWorldFile);
    // Eastings of this system have the number of their zone before them.
    folder.Write("far.tfw", kWorldFile);
    folder.Write("far.prj", PrjOf("2663"));
    const std::string encrypted =
        PlainPdf({"<< /Type /Catalog /Pages 2 0 R >>", "<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
                  "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 9 9] >>",
                  "<< /Filter /Standard /V 1 /R 2 /O (12345678901234567890123456789012) /U "
                  "(12345678901234567890123456789012) /P -4 >>"},
                 "/Encrypt 4 0 R /ID [(1234567890123456) (1234567890123456)]");
    folder.Write("locked.pdf", encrypted);
    folder.ExpectRun("info %locked.pdf", 5, "", {"The PDF file is encrypted."});
    const Refusal refusals[] = {
        {"%map.tfw %map.pdf", 2, "--overwrite georeferences it in place"},
        {"--overwrite %map.tfw %map.pdf", 2, "does NOT exist; a reference is saved into a PDF", ""},
        {"--overwrite %map.tfw %map.pdf", 2, "is no PDF that can be read", "this is no PDF"},
        {"--overwrite %map.tfw %map.pdf", 2, "is no PDF that can be read", original.substr(0, 300)},
        {"--overwrite %map.tfw %map.pdf", 5, "is encrypted", encrypted},
        {"--overwrite %bare.tfw %map.pdf", 2, "Coordinate system is required"},
        {"--overwrite %map.tfw %map.pdf", 2, "has no box that makes a raster", PagePdf("").Text()},
        {"--overwrite %map.tfw %map.pdf", 2, "has no box that makes a raster",
         PagePdf("/MediaBox [0 0 100000000000000000000.0 9]").Text()},
        {"--overwrite %none.tfw %map.pdf", 2, "does NOT exist"},
        {"--overwrite --size 4x4 %map.tfw %map.pdf", 2, "too small to distinguish them"},
        {"--overwrite %far.tfw %map.pdf", 2, "have no longitude and latitude"},
        {"--overwrite --require-exact %map.tfw %map.pdf", 2, "size is not known"},
    };
    for (const Refusal& refusal : refusals) {
        fs::remove(folder / "map.pdf");
        if (!refusal.content.empty()) folder.Write("map.pdf", refusal.content);
        const auto names = Names();
        for (const char* command : {"convert ", "convert --dry-run "}) {
            const ToolRun run =
                folder.ExpectRun(command + std::string(refusal.words), refusal.status, "", {refusal.reason});
            EXPECT_EQ(run.err.find(".mapanchor-"), std::string::npos)
                << "names of working files: " << run.err;
            EXPECT_EQ(run.out, "");
            folder.ExpectFile("map.pdf", refusal.content);
            EXPECT_EQ(Names(), names);
        }
    }
}

TEST(PdfInfo, PageAtSeventyTwoDotsByDefault) {
    const ToolFolder folder;
    folder.Write("map.pdf",
                 GeoPdf::LGIDict{.page = "/MediaBox [0 0 600 800] /CropBox [100 100 400 300]"}.Text());
    folder.ExpectRun("info --json %map.pdf", 0,
                     R"("size":[600,800],"geoTransform":[400000,2,0,5201600,0,-2],"referenceType":"PDF",
                        "pdfPage":{"maps":[{"inUse":true}]})");
    folder.ExpectRun("info --json --dpi 144 %map.pdf", 0,
                     R"("size":[1200,1600],"geoTransform":[400000,1,0,5201600,0,-1])");
    folder.ExpectRun("info --json --size 300x400 %map.pdf", 0, R"("geoTransform":[400000,4,0,5201600,0,-4])");
    folder.ExpectRun("info --json --pdf-box crop %map.pdf", 0, R"("size":[300,200])");
    folder.ExpectRun("info --json --pdf-box trim %map.pdf", 0, R"("size":[600,800])");
    EXPECT_NE(RunTool(Words("convert %map.pdf %map.tfw", folder / "")).status, 2);
    EXPECT_TRUE(TempFolder::Slurp(folder / "map.tfw").starts_with("2.0000000"));
}

TEST(PdfInfo, OtherMapsARotationAndRefusedFormsAreReported) {
    const ToolFolder folder;
    const GeoPdf::LGIDict main;
    const GeoPdf::LGIDict inset{.page = "/MediaBox [0 0 600 800] /Rotate 90",
                                .neatline = "/Neatline [(0) (0) (0) (10) (10) (10) (10) (0)]",
                                .description = "/Description (Inset)",
                                .more_dicts = main.Entry()};
    folder.Write("map.pdf", inset.Text());
    folder.ExpectRun(
        "info %map.pdf", 3, "",
        {"other maps, which are not read: \"Inset\"", "turned by 90 degrees", "media box 0 0 600 800"});
    folder.ExpectRun("info --json %map.pdf", 3,
                     R"("pdfPage":{"dialect":"LGIDict","rotate":90,"maps":[
                        {"name":"Inset","area":100,"inUse":false},
                        {"name":"Map","area":480000,"box":[0,0,600,800],"inUse":true}]})");
    const GeoPdf::Viewport two{.page = "/MediaBox [0 0 612 792] /TrimBox [9 9 600 700] /UserUnit 2.5",
                               .more_viewports = " << /Name (Inset) /BBox [10 20 30 60] /Measure 4 0 R >>"};
    folder.Write("two.pdf", two.Text());
    folder.ExpectRun("info --json %two.pdf", 3,
                     R"("pdfPage":{"dialect":"measure","rotate":0,"userUnit":2.5,"boxes":{
                        "media":[0,0,612,792],"crop":[0,0,612,792],"trim":[9,9,600,700]},"maps":[
                        {"coordSys":"WGS 84, EPSG:4326","fault":null,"inUse":true},
                        {"name":"Inset","area":800,"inUse":false}]})");
    folder.Write("single.pdf", PagePdf(main.page + " /LGIDict " + main.Entry()).Text());
    folder.ExpectRun("info --strict pdf %single.pdf", 5, "",
                     {"The key LGIDict is not of type Array.", "one dictionary stands in its place"});
    folder.ExpectRun("info --json %single.pdf", 3, R"("diagnostics":[{"id":"pdf-beyond-rules"}])");
    folder.Write("none.pdf", PagePdf("/MediaBox [0 0 9 9]").Text());
    for (const char* strictly : {"", "--strict pdf "})
        folder.ExpectRun(std::string("info ") + strictly + "%none.pdf", 4, "", {"No Geospatial data found"});
    folder.ExpectRun("info --strict pdf --page 2 %none.pdf", 64, "", {"--strict pdf"});
    folder.ExpectRun("info --page 2 %none.pdf", 2, "", {"no page 2"});
}

TEST(PdfCheckTool, ShowsFindingsWithTheirPlace) {
    const ToolFolder folder;
    folder.Write("good.pdf", GeoPdf::Viewport().Text());
    folder.Write("bad.pdf", GeoPdf::Viewport{.lpts = "[0 0 0 2 1 2 1 0]"}.Text());
    folder.ExpectRun("check %good.pdf", 0, "", {"passes"});
    folder.Write("two.pdf", GeoPdf::Viewport{.more_viewports = GeoPdf::Viewport().Entry()}.Text());
    folder.ExpectRun("check %two.pdf", 0, "", {"passes"});
    folder.ExpectRun("check --expect-crs EPSG:4326 %two.pdf", 3, "", {"[other-maps]"});
    folder.ExpectRun("check %bad.pdf", 2, "", {"(page 1, VP 1/LPTS) [pdf-unit-square]"});
}

TEST(PdfInfo, ReadsBeyondTheRulesAnyMapOfAnyPage) {
    const ToolFolder folder;
    const auto page = [](const char* keys, const char* viewports) {
        return std::string("<< /Type /Page /Parent 2 0 R /MediaBox [0 0 612 792] ") + keys + " /VP [" +
               viewports + "] >>";
    };
    folder.Write("atlas.pdf", PlainPdf({"<< /Type /Catalog /Pages 2 0 R >>",
                                        "<< /Type /Pages /Kids [3 0 R 4 0 R] /Count 2 >>", page("", ""),
                                        page("/Rotate 90",
                                             "<< /BBox [0 0 612 792] /Name (Main) /Measure 5 0 R >> "
                                             "<< /BBox [0 0 61 79] /Name (Inset) /Measure 5 0 R >>"),
                                        GeoPdf::Viewport{.gcs_value = "6 0 R"}.Measure(),
                                        "<< /Type /GEOGCS /EPSG 4326 >>"}));
    folder.ExpectRun("info %atlas.pdf", 4, "", {"--page reads: 2 (\"Main\")", "[pdf-other-pages]"});
    folder.ExpectRun("info --json --page 2 %atlas.pdf", 3, R"("size":[612,792],"pdfPage":{"maps":[
                        {"name":"Main","inUse":true},{"name":"Inset","inUse":false}]})");
    folder.ExpectRun("info --json --page 2 --map Inset %atlas.pdf", 3, R"("pdfPage":{"maps":[
                        {"name":"Main","inUse":false},{"name":"Inset","inUse":true}]})");
    const ToolRun shown =
        folder.ExpectRun("info --json --page 2 --shown --dpi 144 %atlas.pdf", 3, R"("size":[1584,1224])");
    const json terms = shown.Objects().at(0)["geoTransform"];
    EXPECT_NEAR(terms[0].get<double>(), 15, 1e-9);
    EXPECT_NEAR(terms[2].get<double>(), 1.0 / 1224, 1e-9);
    folder.Write("single.pdf",
                 PagePdf("/MediaBox [0 0 612 792] /LGIDict " + GeoPdf::LGIDict().Entry()).Text());
    folder.ExpectRun("info --json %single.pdf", 3,
                     R"("diagnostics":[{"severity":"warning","id":"pdf-beyond-rules"}])");
}

}  // namespace
