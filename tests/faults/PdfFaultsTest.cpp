// Where the user's PDF is when georeferencing it fails, and what the caller hears of it.

#include "LogCapture.h"
#include "PagePdf.h"
#include "References.h"
#include "Roads.h"
#include "SmallDisk.h"
#include "TempFolder.h"

#include <MapAnchor/BGeoPDFPage.h>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>
#include <functional>
#include <optional>

namespace {

namespace fs = std::filesystem;
using MapAnchor::BGeoPDFPage;

bool IsWholeResult(const std::string& file) {
    if (!TempFolder::Slurp(file).ends_with("%%EOF\n")) return false;
    const BGeoPDFPage page = BGeoPDFPage::Describe(Tellurion::BString(file));
    return page.Dialect == BGeoPDFPage::EDialect::Measure && page.Fault.IsEmpty();
}

/// What the caller hears, the log included.
std::string Save(const std::string& target, const std::string& temporaries) {
    const LogCapture log;
    const std::string before = fs::temp_directory_path();
    setenv("TMPDIR", temporaries.c_str(), 1);
    const Thrown thrown = Roads::Save(Tellurion::EReferenceType::GeoPDF, target,
                                      References::WithCorners(676000, 5242000), Roads::kStrict);
    setenv("TMPDIR", before.c_str(), 1);
    std::string heard =
        thrown.type.empty() ? "saved" : thrown.type + " | " + thrown.source + " | " + thrown.detail;
    for (const std::string& line : log.lines)
        heard += "\n" + line;
    return heard;
}

/// A PDF and the folder for temporary files.
class Scene {
public:
    explicit Scene(const std::string& content)
        : original(content), target(folder_.Write("map.pdf", content)), temporaries(folder_ / "tmp") {
        fs::create_directory(temporaries);
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
    mutable std::optional<SmallDisk> disk_;
    mutable int held_ = -1;

public:
    const std::string original;
    const std::string target;
    const std::string temporaries;
    mutable bool usable = true;
};

struct Circumstance {
    const char* name;
    std::string content;
    std::function<void(const Scene&)> prepare;
    const char* heard;     ///< the start of what the caller hears
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
        const std::string heard = Save(scene.target, scene.temporaries);
        EXPECT_TRUE(heard.starts_with(test.heard)) << heard;
        EXPECT_NE(heard.find(test.in_words), std::string::npos) << heard;
        EXPECT_EQ(IsWholeResult(scene.target), test.stands == 'r');
        EXPECT_TRUE(scene.StandsAtTarget() || test.stands != 't');
        if (test.stands != 'a') continue;
        EXPECT_FALSE(scene.HasTarget());
        EXPECT_NE(heard.find("stands under the name <" + scene.NameAside() + ">"), std::string::npos)
            << heard;
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
        const std::string heard = Save(target, temporaries / "");
        if (read_only) {
            EXPECT_TRUE(heard.starts_with("BFileAccessException")) << heard;
            EXPECT_EQ(TempFolder::Slurp(target), good);
            continue;
        }
        EXPECT_TRUE(heard.starts_with("BGeoReferenceWriteException")) << heard;
        EXPECT_NE(heard.find(target), std::string::npos);
        EXPECT_NE(heard.find("stands under the name <"), std::string::npos);
        EXPECT_FALSE(fs::exists(target));
    }
}

}  // namespace
