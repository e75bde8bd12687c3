#include <gtest/gtest.h>

#include "RunTool.h"
#include "TempFolder.h"

#include <fcntl.h>
#include <gdal_priv.h>
#include <ogrsf_frmts.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <memory>
#include <set>
#include <sstream>
#include <thread>

namespace {

using nlohmann::json;
namespace fs = std::filesystem;

constexpr const char* kWorldFile = "0.1\n0\n0\n-0.1\n10.05\n49.95\n";

class BatchRun : public testing::Test {
protected:
    BatchRun() {
        const std::string prj = PrjOf("4326");
        fs::create_directory(folder / "deep");
        for (const char* name : {"a", "b", "deep/c", "deep/d"}) {
            folder.Write(std::string(name) + ".tfw", kWorldFile);
            folder.Write(std::string(name) + ".prj", prj);
        }
        folder.Write("bad.tab", "no table");
        folder.Write("notes.txt", "no reference");
    }
    std::string Names(const std::vector<std::string>& names, char mark = '\n') const {
        std::string list;
        for (const std::string& name : names)
            list += (folder / name) + mark;
        return list;
    }
    /// The files of the rows, within the folder.
    std::vector<std::string> FilesOf(const std::vector<json>& rows) const {
        std::vector<std::string> files;
        for (const json& row : rows)
            files.push_back(fs::relative(row["description"].get<std::string>(), folder / ".").string());
        return files;
    }
    static std::vector<std::string> Lines(const std::string& text) {
        std::vector<std::string> lines;
        std::istringstream in(text);
        for (std::string line; std::getline(in, line);)
            lines.push_back(line);
        return lines;
    }

    const TempFolder folder;
    const std::vector<std::string> kWalked = {"a.tfw", "b.tfw", "bad.tab", "deep/c.tfw", "deep/d.tfw"};
};

TEST_F(BatchRun, ARowForEachInputInOrder) {
    const std::vector<std::string> files = {"b.tfw", "none.tfw", "deep/c.tfw", "a.tfw", "bad.tab", "a.tfw"};
    for (const char* jobs : {"1", "3"}) {
        const ToolRun run = RunTool({"batch", "--jobs", jobs}, {.in = Names(files)});
        EXPECT_EQ(run.status, 3) << run.err;
        EXPECT_EQ(run.err, "");
        EXPECT_EQ(FilesOf(run.Objects()), files);
        EXPECT_EQ(run.out, RunTool({"info", "--json", "-"}, {.in = Names(files)}).out);
        EXPECT_EQ(RunTool({"batch", "-0", "--jobs", jobs}, {.in = Names(files, '\0')}).out, run.out);
    }
    EXPECT_EQ(FilesOf(RunTool({"batch", folder / "."}).Objects()), kWalked);
    EXPECT_EQ(RunTool({"batch", "--all", folder / "."}).Objects().size(), 10U);
    const ToolRun unordered = RunTool({"batch", "--unordered", "--jobs", "3", folder / "."});
    EXPECT_EQ(unordered.Objects().size(), kWalked.size());
    EXPECT_EQ(RunTool({"batch"}, {.in = ""}).status, 0);
    EXPECT_EQ(RunTool({"batch", "--progress", folder / "a.tfw"}).err.find("1 of 1 files, 0 failed"), 0U);
}

bool HasOpen(const fs::path& process, const std::string& file) {
    std::error_code error;
    for (fs::directory_iterator entry(process / "fd", error), end; !error && entry != end;
         entry.increment(error)) {
        std::error_code unreadable;
        if (fs::read_symlink(entry->path(), unreadable) == fs::path(file)) return true;
    }
    return false;
}

/// Sends a signal to the other process that has a pipe open, as soon as there is one.
void KillReaderOf(const std::string& pipe, int signal) {
    const int writer = open(pipe.c_str(), O_WRONLY);  // waits for the reader
    for (bool is_sent = false; !is_sent;) {
        for (const auto& process : fs::directory_iterator("/proc")) {
            const std::string number = process.path().filename().string();
            const bool is_other = number.find_first_not_of("0123456789") == std::string::npos &&
                                  number != std::to_string(getpid());
            if (is_other && HasOpen(process.path(), pipe)) is_sent = kill(std::stoi(number), signal) == 0;
        }
    }
    close(writer);
}

TEST_F(BatchRun, OneBadFileCostsOneRow) {
    ASSERT_EQ(mkfifo((folder / "hangs.tfw").c_str(), 0600), 0);
    ASSERT_EQ(mkfifo((folder / "dies.tfw").c_str(), 0600), 0);
    folder.Write("huge.tfw", std::string(12 << 20, '1'));
    struct Bad {
        const char* file;
        const char* type;
        const char* limit;
    };
    // AddressSanitizer ends a process at its limit before it can say so.
#ifdef __SANITIZE_ADDRESS__
    const char* const at_limit = "Crash";
#else
    const char* const at_limit = "OutOfMemory";
#endif
    const Bad bads[] = {{"hangs.tfw", "Timeout", "--timeout 0.7"},
                        {"dies.tfw", "Crash", ""},
                        {"huge.tfw", at_limit, "--memory 8"}};
    for (const Bad& bad : bads) {
        std::thread killer;
        if (std::string(bad.file) == "dies.tfw")
            killer = std::thread(KillReaderOf, folder / bad.file, SIGSEGV);
        const ToolRun run = RunTool(Words(std::string("batch --jobs 1 ") + bad.limit),
                                    {.in = Names({"a.tfw", bad.file, "b.tfw"})});
        if (killer.joinable()) killer.join();
        EXPECT_EQ(run.status, 3) << bad.file << run.err;
        const auto rows = run.Objects();
        ASSERT_EQ(FilesOf(rows), (std::vector<std::string>{"a.tfw", bad.file, "b.tfw"}));
        EXPECT_EQ(rows[1]["mapanchor"].value("/error/type"_json_pointer, ""), bad.type) << rows[1];
        EXPECT_TRUE(rows[0]["mapanchor"]["ok"] == true && rows[2]["mapanchor"]["ok"] == true) << bad.file;
    }
}

TEST_F(BatchRun, ShardsTogetherAreTheWhole) {
    std::multiset<std::string> all;
    for (const char* shard : {"1/3", "2/3", "3/3"})
        for (const std::string& file : FilesOf(RunTool({"batch", "--shard", shard, folder / "."}).Objects()))
            all.insert(file);
    EXPECT_EQ(all, std::multiset<std::string>(kWalked.begin(), kWalked.end()));
    for (const char* wrong : {"0/3", "4/3", "1", "1/3x"})
        EXPECT_EQ(RunTool({"batch", "--shard", wrong, folder / "."}).status, 64) << wrong;
}

TEST_F(BatchRun, ResumesWhatWasTornOff) {
    const std::string whole = RunTool({"batch", folder / "."}).out;
    const std::size_t second_line = whole.find('\n') + 1;
    // Each row: what an earlier run left behind.
    for (const std::string& left :
         {std::string(), whole.substr(0, second_line), whole.substr(0, second_line + 40),
          whole.substr(0, second_line) + "{\"descr\n", whole}) {
        const std::string file = folder.Write("rows.jsonl", left);
        const ToolRun run = RunTool({"batch", "--resume", file, folder / "."});
        EXPECT_TRUE(run.status == 3 || run.status == 2 || run.status == 0) << run.err;
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(TempFolder::Slurp(file), whole) << left.size();
    }
    const std::string precious = folder.Write("precious.txt", "no rows\nat all\n");
    EXPECT_EQ(RunTool({"batch", "--resume", precious, folder / "."}).status, 2);
    EXPECT_EQ(TempFolder::Slurp(precious), "no rows\nat all\n");
    EXPECT_EQ(RunTool({"batch", "--resume", folder / "missing/rows.jsonl", folder / "."}).status, 2);
}

TEST_F(BatchRun, ResumesJsonLinesAlone) {
    const std::string file = folder.Write("rows.jsonl", "");
    for (const std::vector<std::string>& other :
         {std::vector<std::string>{"--to", "csv"}, {"--to", "stac"}, {"--index", folder / "index.gpkg"}}) {
        std::vector<std::string> words = {"batch", "--resume", file, folder / "."};
        words.insert(words.end(), other.begin(), other.end());
        const ToolRun run = RunTool(words);
        EXPECT_EQ(run.status, 64) << other[0];
        EXPECT_NE(run.err.find(other[0] + " excludes --resume"), std::string::npos) << run.err;
        EXPECT_EQ(TempFolder::Slurp(file), "") << other[0];
    }
    EXPECT_FALSE(fs::exists(folder / "index.gpkg"));
}

TEST_F(BatchRun, StatusOfFailuresAlone) {
    folder.Write("worse.tab", "no table");
    const struct {
        const char* what;
        std::vector<std::string> files;
        int status;
    } rows[] = {{"all refused", {"bad.tab", "worse.tab"}, 5},
                {"all missing", {"none.tfw", "nothing.tfw"}, 2},
                {"refused and missing", {"bad.tab", "none.tfw"}, 2},
                {"one of them read", {"bad.tab", "none.tfw", "a.tfw"}, 3}};
    for (const auto& row : rows)
        EXPECT_EQ(RunTool({"batch"}, {.in = Names(row.files)}).status, row.status) << row.what;
}

TEST_F(BatchRun, RowsOfOtherKinds) {
    folder.Write("a,\"1\".tfw", kWorldFile);
    const auto rows = [this](const char* kind) {
        const ToolRun run = RunTool({"batch", "--size", "100x100", "--to", kind},
                                    {.in = Names({"deep/c.tfw", "none.tfw", "a,\"1\".tfw"})});
        EXPECT_EQ(run.status, 3) << run.err;
        return Lines(run.out);
    };
    const auto csv = rows("csv");
    ASSERT_EQ(csv.size(), 4U);
    EXPECT_EQ(csv[1], folder / "deep/c.tfw" + ",true,WLD,EPSG:4326,100,100,10,40,20,50,,,");
    EXPECT_EQ(csv[2].find(folder / "none.tfw" + ",false,,,100,100,,,,,,BFileNotFoundException,"), 0U)
        << csv[2];
    EXPECT_EQ(csv[3], std::string("\"") + (folder / "a,\"\"1\"\".tfw") + "\",true,WLD,,100,100,,,,,,,");
    const auto sequence = rows("geojsonseq");
    ASSERT_EQ(sequence.size(), 3U);
    EXPECT_EQ(sequence[0][0], '\x1e');
    EXPECT_EQ(json::parse(sequence[0].substr(1))["bbox"], json({10.0, 40.0, 20.0, 50.0}));
    EXPECT_TRUE(json::parse(sequence[1].substr(1))["geometry"].is_null());
    const auto stac = rows("stac");
    ASSERT_EQ(stac.size(), 3U);
    const json item = json::parse(stac[0]);
    const json& properties = item["properties"];
    EXPECT_EQ(item["stac_version"], "1.0.0");
    EXPECT_EQ(item["bbox"], json({10.0, 40.0, 20.0, 50.0}));
    EXPECT_EQ(properties["proj:epsg"], 4326);
    EXPECT_EQ(properties["proj:shape"], json({100, 100}));
    EXPECT_NEAR(properties["proj:transform"][2].get<double>(), 10.0, 1e-12);
    EXPECT_EQ(properties["proj:wkt2"].get<std::string>().find("GEOGCRS["), 0U);
    EXPECT_EQ(properties["datetime"].get<std::string>().size(), sizeof("2000-01-01T00:00:00Z") - 1);
    EXPECT_EQ(json::parse(stac[1])["properties"]["mapanchor:error"]["type"], "BFileNotFoundException");
}

TEST_F(BatchRun, AnIndexHoldsTheFootprints) {
    GDALAllRegister();
    for (const char* name : {"index.gpkg", "index.fgb"}) {
        const std::string index = folder / name;
        const ToolRun run = RunTool({"batch", "--size", "100x100", "--index", index, folder / "."});
        ASSERT_EQ(run.status, 3) << run.err;
        EXPECT_EQ(run.Objects().size(), kWalked.size());
        const GDALDatasetUniquePtr dataset(GDALDataset::Open(index.c_str(), GDAL_OF_VECTOR));
        ASSERT_TRUE(dataset) << name;
        int with_area = 0;
        std::vector<std::string> locations;
        for (const auto& row : *dataset->GetLayer(0)) {
            locations.push_back(fs::relative(row->GetFieldAsString("location"), folder / ".").string());
            if (!row->GetGeometryRef()) continue;
            OGREnvelope extent;
            row->GetGeometryRef()->getEnvelope(&extent);
            EXPECT_NEAR(extent.MaxX, 20.0, 1e-9);
            ++with_area;
        }
        std::sort(locations.begin(), locations.end());
        // FlatGeobuf has no place for a row without an area.
        EXPECT_TRUE(locations == kWalked || std::string(name) == "index.fgb") << name;
        EXPECT_EQ(with_area, 4);
    }
    EXPECT_EQ(RunTool({"batch", "--index", folder / "index.gpkg", folder / "."}).status, 2);
    EXPECT_EQ(RunTool({"batch", "--overwrite", "--index", folder / "index.gpkg", folder / "."}).status, 3);
    EXPECT_EQ(RunTool({"batch", "--index", folder / "index.nothing", folder / "."}).status, 2);
}

TEST_F(BatchRun, AFullDiskIsSaid) {
    const ToolRun run =
        RunTool({"batch", folder / "."}, {.in = "", .environment = {}, .out_path = "/dev/full"});
    EXPECT_EQ(run.status, 2);
    EXPECT_NE(run.err.find("cannot be written"), std::string::npos);
}

}  // namespace
