// Where the user's PDF stands when something fails while it is georeferenced, and what
// the caller is told.

#include "FaultRun.h"
#include "PagePdf.h"
#include "PlainPdf.h"
#include "References.h"
#include "SmallDisk.h"

#include <MapAnchor/BGeoPDFPage.h>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>
#include <functional>
#include <optional>

namespace {

namespace fs = std::filesystem;
using MapAnchor::BGeoPDFPage;

constexpr const char* kPdfType = "11";

bool IsWholeResult(const std::string& file) {
    if (!TempFolder::Slurp(file).ends_with("%%EOF\n")) return false;
    const BGeoPDFPage page = BGeoPDFPage::Describe(Tellurion::BString(file));
    return page.Dialect == BGeoPDFPage::EDialect::Measure && page.Fault.IsEmpty();
}

/// A PDF and the folder for temporary files, on a disk of its own where asked.
class Scene {
public:
    explicit Scene(const std::string& content, bool other_device = false)
        : original(content), target(folder_.Write("map.pdf", content)), temporaries(folder_ / "tmp") {
        fs::create_directory(temporaries);
        if (other_device) Mount(temporaries, "1m");
    }
    ~Scene() {
        if (held_ >= 0) close(held_);
    }
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;

    const SmallDisk& Mount(const std::string& folder, const std::string& size) const {
        disk_.emplace(folder, size);
        usable = disk_->IsMounted();
        return *disk_;
    }
    void HoldOpen() const { held_ = open(target.c_str(), O_RDWR | O_CLOEXEC); }

    FaultRun Save(const Fault& fault) const {
        return RunWithFault(SAVE_DRIVER, {kPdfType, target}, fault, folder_ / "", temporaries);
    }
    FaultRun SaveByTool(const Fault& fault) const {
        Tellurion::BGeoReference utm;
        References::SetSystem(utm, "32632");
        sources_.Write("map.prj", utm.CoordSys->ToWKT().StdStr());
        const std::string source = sources_.Write("map.tfw", "0.5\n0\n0\n-0.5\n676000.25\n5241999.75\n");
        return RunWithFault(MAPANCHOR_TOOL, {"convert", "--overwrite", source, target}, fault, folder_ / "",
                            temporaries);
    }
    bool StandsAtTarget() const { return TempFolder::Slurp(target) == original; }
    /// The name among the temporary files; empty for none.
    std::string NameAside() const {
        for (const auto& entry : fs::directory_iterator(temporaries))
            if (TempFolder::Slurp(entry.path()) == original) return entry.path();
        return {};
    }
    bool HasTarget() const { return fs::exists(target); }

private:
    TempFolder folder_;
    TempFolder sources_;
    mutable std::optional<SmallDisk> disk_;
    mutable int held_ = -1;

public:
    const std::string original;
    const std::string target;
    const std::string temporaries;
    mutable bool usable = true;
};

struct Sweep {
    const char* name;
    const char* call;
    const char* kind;
    long fewest;  ///< strikes that there are at least
    bool other_device = false;
    bool by_tool = false;  ///< at the command line the target itself stands whole
};
void PrintTo(const Sweep& sweep, std::ostream* out) {
    *out << sweep.name;
}

class PdfFaults : public testing::TestWithParam<Sweep> {};

// Every call on a file that the save makes, one after the other.
TEST_P(PdfFaults, ThePdfIsNeverLost) {
    const Sweep& sweep = GetParam();
    const std::string original = RichPdf(200, 100);
    long number = 1;
    for (bool struck = true; struck && number < 300; ++number) {
        SCOPED_TRACE(number);
        const Scene scene(original, sweep.other_device);
        if (!scene.usable) GTEST_SKIP() << "no file system of its own can be had";
        const Fault fault = {sweep.call, sweep.kind, number};
        const FaultRun run = sweep.by_tool ? scene.SaveByTool(fault) : scene.Save(fault);
        struck = run.struck;
        EXPECT_FALSE(run.HasCrashed()) << run.run.status << run.run.out;
        const std::string aside = sweep.by_tool ? "" : scene.NameAside();
        const bool at_target = scene.StandsAtTarget();
        const bool is_result = IsWholeResult(scene.target);
        EXPECT_TRUE(at_target || is_result || !aside.empty()) << "lost: " << run.run.out << run.run.err;
        if (run.WasKilled()) continue;
        EXPECT_EQ(run.SaysSaved(), is_result) << run.run.out << run.run.err;
        if (at_target || is_result) continue;
        EXPECT_NE(run.run.out.find("stands under the name <" + aside + ">"), std::string::npos)
            << run.run.out;
    }
    EXPECT_GE(number - 2, sweep.fewest);
}

INSTANTIATE_TEST_SUITE_P(Calls, PdfFaults,
                         testing::Values(Sweep{"killed", "any", "kill", 10},
                                         Sweep{"killed_moving_to_another_device", "any", "kill", 10, true},
                                         Sweep{"error", "any", "EIO", 10},
                                         Sweep{"error_moving_to_another_device", "any", "EIO", 10, true},
                                         Sweep{"half_written", "write", "short", 1},
                                         Sweep{"disk_full_from_here", "write", "disk-full", 1},
                                         Sweep{"tool_killed", "any", "kill", 8, false, true},
                                         Sweep{"error_of_the_tool", "any", "EIO", 8, false, true}),
                         [](const auto& row) { return row.param.name; });

struct Circumstance {
    const char* name;
    std::string content;
    std::function<void(const Scene&)> prepare;
    const char* told;      ///< the start of what the caller is told
    const char* in_words;  ///< and what it holds besides
    char stands;           ///< t: at the target, a: aside, r: the result is there
};

// Real causes of failure, and what comes of them.
TEST(PdfFaultsOfFiles, WhereThePdfStandsAndWhatIsTold) {
    const std::string good = RichPdf(200, 100);
    const std::string large = good.substr(0, good.size() - 6) + std::string(300000, '\n') + "%%EOF\n";
    const std::string encrypted =
        PlainPdf({"<< /Type /Catalog /Pages 2 0 R >>", "<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
                  "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 9 9] >>",
                  "<< /Filter /Standard /V 1 /R 2 /O (12345678901234567890123456789012) /U "
                  "(12345678901234567890123456789012) /P -4 >>"},
                 "/Encrypt 4 0 R /ID [(1234567890123456) (1234567890123456)]");
    const auto nothing = [](const Scene&) {};
    const Circumstance circumstances[] = {
        {"no_pdf", "this is no PDF", nothing, "BException", "This is not a PDF file", 'a'},
        {"empty", "", nothing, "BException", "", 'a'},
        {"cut_short", good.substr(0, good.size() / 2), nothing, "BException", "", 'a'},
        {"sections_before_the_file",
         PlainPdf({"<< /Type /Catalog /Pages 2 0 R >>", "<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
                   "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 9 9] >>"},
                  "/Prev -77"),
         nothing, "BException", "", 'a'},
        {"encrypted", encrypted, nothing, "BException", "does not currently support password protected", 'a'},
        {"no_file", good, [](const Scene& scene) { fs::remove(scene.target); }, "saved",
         "Could not open temporary file, the PDF file was not exported", '-'},
        {"no_room_to_move_aside", large, [](const Scene& scene) { scene.Mount(scene.temporaries, "64k"); },
         "BFileAccessException", "Could not create temp", 't'},
        {"read_only_folder_for_temporaries", good,
         [](const Scene& scene) { scene.Mount(scene.temporaries, "64k").MakeReadOnly(); },
         "BFileAccessException", "Could not create temp File for PDF export.", 't'},
        {"held_open", good, [](const Scene& scene) { scene.HoldOpen(); }, "saved", "", 'r'},
        {"read_only_file", good,
         [](const Scene& scene) { fs::permissions(scene.target, fs::perms::owner_read); }, "saved", "", 'r'},
    };
    for (const Circumstance& test : circumstances) {
        SCOPED_TRACE(test.name);
        const Scene scene(test.content);
        test.prepare(scene);
        if (!scene.usable) continue;  // only root can mount
        const FaultRun run = scene.Save({"any", "EIO", 0});
        EXPECT_TRUE(run.run.out.starts_with(test.told)) << run.run.out;
        EXPECT_NE(run.run.out.find(test.in_words), std::string::npos) << run.run.out;
        EXPECT_EQ(IsWholeResult(scene.target), test.stands == 'r');
        EXPECT_TRUE(scene.StandsAtTarget() || test.stands != 't');
        if (test.stands != 'a') continue;
        EXPECT_FALSE(scene.HasTarget());
        EXPECT_NE(run.run.out.find("stands under the name <" + scene.NameAside() + ">"), std::string::npos)
            << run.run.out;
    }
}

// The target's own disk is full, or cannot be written; the PDF has been moved to another.
TEST(PdfFaultsOfFiles, TheTargetsDisk) {
    for (const bool read_only : {false, true}) {
        SCOPED_TRACE(read_only ? "read-only" : "full");
        const TempFolder own;
        const TempFolder temporaries;
        // One page of the disk holds it; the result needs two.
        const std::string good =
            PagePdf("/MediaBox [0 0 200 100] /Note (" + std::string(3400, 'x') + ")").Text();
        const SmallDisk disk(own / ".", "16k");
        if (!disk.IsMounted()) GTEST_SKIP() << "no file system of its own can be had";
        const std::string target = own.Write("map.pdf", good);
        if (!read_only) own.Write("other", std::string(12288, 'x'));
        ASSERT_TRUE(!read_only || disk.MakeReadOnly());
        const FaultRun run =
            RunWithFault(SAVE_DRIVER, {kPdfType, target}, {"any", "EIO", 0}, own / "", temporaries / "");
        EXPECT_EQ(run.run.status, 2) << run.run.out;
        if (read_only) {
            EXPECT_TRUE(run.run.out.starts_with("BFileAccessException")) << run.run.out;
            EXPECT_EQ(TempFolder::Slurp(target), good);
            continue;
        }
        EXPECT_TRUE(run.run.out.starts_with("BGeoReferenceWriteException")) << run.run.out;
        EXPECT_NE(run.run.out.find(target), std::string::npos);
        EXPECT_NE(run.run.out.find("stands under the name <"), std::string::npos);
        EXPECT_FALSE(fs::exists(target));
    }
}

}  // namespace
