// Many threads, each with files and records of its own, by name and by type at once: every
// one finds what a lone reader found. MAPANCHOR_THREAD_SECONDS makes it a longer run.

#include "ChartFiles.h"
#include "GdalFiles.h"
#include "HeaderFiles.h"
#include "Outcomes.h"
#include "PlainPdf.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <thread>

namespace MapAnchor {
namespace {

using namespace Tellurion;
using namespace HeaderFiles;

/// Makes a folder with a file for each kind that saves, and a header for each that only
/// reads; saves and reads them, and returns what each gave or threw.
std::string SaveAndReadAll(const std::string& folder) {
    const std::map<std::string, std::string> files = {
        {"chart.kap", "BSB/RA=20,10\nKNP/GD=WGS84\nREF/1,0,0,4,3\nREF/2,9,0,4,2\nREF/3,9,9,3,3\n\x1A"},
        {"frame.on1", FrameFile().Bytes()},
        {"quad.doq", DoqFile().Bytes()},
        {"image.ecw", Ecw2({})},
        {"image.jp2", Jp2(Placed({1, 1, 0, 1, 3072, 0, 1, 32633}))},
        {"image.sid", Sid2(SidPlace(500000, 4100000, 10, -10))},
        {"map.tif", ""},
        {"map.tfw", ""},
        {"map.rsf", ""},
        {"map.tab", ""},
        {"map.ers", ""}};
    std::filesystem::create_directories(folder);
    std::string answers;
    const BGeoReference saved = References::Of("32633", {10, 0, 500000, 0, -10, 4100000});
    const auto read = [&](EReferenceType type, const std::string& file) {
        BGeoReference reference;
        answers += (type == EReferenceType::GeoPDF ? Roads::Read(type, file, reference)
                                                   : Roads::Read(file, reference))
                       .type;
        answers += CodeOf(reference) + '\n' + PointsOf(reference);
        if (reference.HasMathTransform()) answers += testing::PrintToString(References::Terms(reference));
    };
    for (const auto& [name, bytes] : files) {
        const std::string file = folder + "/" + name;
        if (name == "map.tif") GdalFiles::MakeTiff(file);
        if (bytes.empty()) answers += Roads::Save(file, saved).type;
        if (!bytes.empty()) std::ofstream(file, std::ios::binary) << bytes;
        read(EReferenceType::Reserved, file);
    }
    std::ofstream(folder + "/map.pdf", std::ios::binary) << RichPdf(200, 100);
    answers += Roads::Save(EReferenceType::GeoPDF, folder + "/map.pdf", saved).type;
    read(EReferenceType::GeoPDF, folder + "/map.pdf");
    return answers;
}

TEST(Threads, EachFindsInItsOwnFilesWhatALoneReaderFinds) {
    const LogCapture quiet;
    const TempFolder folder;
    const std::string alone = SaveAndReadAll(folder / "alone");
    EXPECT_EQ(alone.find("Exception"), std::string::npos) << alone;
    const char* seconds = std::getenv("MAPANCHOR_THREAD_SECONDS");
    const auto end =
        std::chrono::steady_clock::now() + std::chrono::seconds(seconds ? std::atoi(seconds) : 0);
    std::vector<std::string> last(8);
    std::vector<std::thread> threads;
    for (std::string& answers : last)
        threads.emplace_back([&, own = folder / std::to_string(threads.size())] {
            do {
                answers = SaveAndReadAll(own);
            } while (answers == alone && std::chrono::steady_clock::now() < end);
        });
    for (std::thread& thread : threads)
        thread.join();
    for (const std::string& answers : last)
        EXPECT_EQ(answers, alone);
}

}  // namespace
}  // namespace MapAnchor
