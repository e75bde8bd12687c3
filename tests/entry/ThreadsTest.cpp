// Many threads, each with files and records of its own, through both roads at once: every
// one finds what a lone reader found. MAPANCHOR_THREAD_SECONDS makes it a longer run.

#include "ChartFiles.h"
#include "GdalFiles.h"
#include "HeaderFiles.h"
#include "LogCapture.h"
#include "PlainPdf.h"
#include "References.h"
#include "Roads.h"
#include "TempFolder.h"

#include <Tellurion/BCoordSys.h>

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

namespace MapAnchor {
namespace {

using namespace Tellurion;
using namespace HeaderFiles;

constexpr int kThreads = 8;

/// A saved file for each kind that saves, and a header for each that only reads.
class Shelf {
public:
    explicit Shelf(const std::string& folder) : folder_(folder) {
        std::filesystem::create_directory(folder);
        const std::string keys = Tiff(Placed({}));
        Write("chart.kap",
              "BSB/NA=Bay,RA=200,100\nKNP/GD=WGS84\nREF/1,0,0,48,-123\nREF/2,200,0,48,-121\n"
              "REF/3,200,100,47,-121\nREF/4,0,100,47,-123\n\x1A");
        Write("frame.on1", FrameFile().Bytes());
        Write("quad.doq", DoqFile().Bytes());
        Write("image.ecw", Ecw2({}));
        Write("image.jp2", Jp2(Placed({1, 1, 0, 1, 3072, 0, 1, 32633})));
        Write("image.sid", Sid2(SidPlace(500000, 4100000, 10, -10)));
        GdalFiles::MakeTiff(Path("map.tif"));
        Write("map.pdf", RichPdf(200, 100));
    }

    std::string Path(const std::string& name) const { return folder_ + "/" + name; }

    /// What each file gives, one line a file, with what was thrown.
    std::vector<std::string> SaveAndReadAll() const {
        std::vector<std::string> answers;
        const BGeoReference saved = References::Of("32633", {10, 0, 500000, 0, -10, 4100000});
        for (const char* name : {"map.tfw", "map.rsf", "map.tab", "map.ers", "map.tif"}) {
            const std::string unsaved = Roads::Save(Path(name), saved).type;
            answers.push_back(unsaved + Answer(name));
        }
        const Thrown unsaved = Roads::Save(EReferenceType::GeoPDF, Path("map.pdf"), saved);
        BGeoReference read;
        const Thrown unread = Roads::Read(EReferenceType::GeoPDF, Path("map.pdf"), read);
        answers.push_back("map.pdf " + unsaved.type + Describe(unread, read));
        for (const char* name : {"chart.kap", "frame.on1", "quad.doq", "image.ecw", "image.jp2", "image.sid"})
            answers.push_back(Answer(name));
        return answers;
    }

private:
    void Write(const char* name, const std::string& bytes) const {
        std::ofstream(Path(name), std::ios::binary) << bytes;
    }
    std::string Answer(const char* name) const {
        BGeoReference read;
        const Thrown thrown = Roads::Read(Path(name), read);
        return std::string(name).append(1, ' ').append(Describe(thrown, read));
    }
    static std::string Describe(const Thrown& thrown, const BGeoReference& read) {
        if (!thrown.type.empty()) return thrown.type;
        std::string text = read.HasCoordSys() ? read.CoordSys->ToEPSGCode().StdStr() : "no system";
        if (read.HasMathTransform())
            for (const double term : References::Terms(read))
                text.append(1, ' ').append(std::to_string(term));
        return text.append(1, ' ').append(std::to_string(read.PointPairVector.size()));
    }

    std::string folder_;
};

TEST(Threads, EachFindsInItsOwnFilesWhatALoneReaderFinds) {
    const LogCapture quiet;
    const TempFolder folder;
    const std::vector<std::string> alone = Shelf(folder / "alone").SaveAndReadAll();
    ASSERT_EQ(alone.size(), 12U);
    for (const std::string& answer : alone)
        EXPECT_EQ(answer.find("Exception"), std::string::npos) << answer;

    const char* seconds = std::getenv("MAPANCHOR_THREAD_SECONDS");
    const auto end =
        std::chrono::steady_clock::now() + std::chrono::seconds(seconds ? std::atoi(seconds) : 0);
    std::array<std::vector<std::string>, kThreads> other;
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        const Shelf shelf(folder / std::to_string(i));
        threads.emplace_back([&alone, &different = other[static_cast<std::size_t>(i)], shelf, end] {
            do {
                const auto answers = shelf.SaveAndReadAll();
                if (answers != alone) different = answers;
            } while (different.empty() && std::chrono::steady_clock::now() < end);
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    for (const auto& different : other)
        EXPECT_TRUE(different.empty() || different == alone);
}

}  // namespace
}  // namespace MapAnchor
