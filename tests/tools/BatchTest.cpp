#include <gtest/gtest.h>

#include "../pdf/import/GeoPdfFiles.h"
#include "RunTool.h"

#include <gdal_priv.h>
#include <ogrsf_frmts.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <thread>

namespace {

using nlohmann::json;
namespace fs = std::filesystem;

using Strings = std::vector<std::string>;
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
    std::string Names(const Strings& names, char mark = '\n') const {
        std::string list;
        for (const std::string& name : names)
            list += (folder / name) + mark;
        return list;
    }
    /// The files of the rows, within the folder.
    Strings FilesOf(const ToolRun& run) const {
        Strings files;
        for (const json& row : run.Objects())
            files.push_back(fs::relative(row["description"].get<std::string>(), folder / ".").string());
        return files;
    }

    const ToolFolder folder;
    const Strings walked = {"a.tfw", "b.tfw", "bad.tab", "deep/c.tfw", "deep/d.tfw"};
};

TEST_F(BatchRun, ARowForEachInputInOrder) {
    const Strings files = {"b.tfw", "none.tfw", "deep/c.tfw", "a.tfw", "bad.tab", "a.tfw"};
    for (const char* jobs : {"1", "3"}) {
        const ToolRun run = RunTool({"batch", "--jobs", jobs}, {.in = Names(files)});
        EXPECT_EQ(run.status, 3) << run.err;
        EXPECT_EQ(run.err, "");
        EXPECT_EQ(FilesOf(run), files);
        EXPECT_EQ(run.out, RunTool({"info", "--json", "-"}, {.in = Names(files)}).out);
        EXPECT_EQ(RunTool({"batch", "-0", "--jobs", jobs}, {.in = Names(files, '\0')}).out, run.out);
    }
    fs::create_directory_symlink(".", folder / "deep/again");  // not followed
    EXPECT_EQ(FilesOf(folder.ExpectRun("batch %.", 3)), walked);
    EXPECT_EQ(FilesOf(folder.ExpectRun("batch --all %.", 3)).size(), 10U);
    EXPECT_EQ(FilesOf(folder.ExpectRun("batch --unordered --jobs 3 %.", 3)).size(), walked.size());
    EXPECT_EQ(RunTool({"batch"}, {.in = ""}).status, 0);
    folder.ExpectRun("batch --progress %a.tfw", 0, "", {"1 of 1 files, 0 failed"});
    const ToolRun full = RunTool({"batch", folder / "."}, {.out_path = "/dev/full"});
    EXPECT_EQ(full.status, 2);
    EXPECT_NE(full.err.find("cannot be written"), std::string::npos);
}

/// Fields of /proc/PID/stat behind the name: 2 is the parent, 12 the time in the program.
long FieldOf(const std::string& process, int field) {
    std::string stat;
    std::ifstream file("/proc/" + process + "/stat");
    std::getline(file, stat);  // empty where the process has ended meanwhile
    std::istringstream in(stat.substr(stat.rfind(')') + 1));
    std::string word;
    for (int i = 0; i < field; ++i)
        in >> word;
    return in ? std::stol(word) : 0;
}

/// Sends a signal to the worker that has begun to compute, as soon as there is one.
void KillBusyWorker(int signal) {
    for (;; std::this_thread::yield())
        for (const auto& entry : fs::directory_iterator("/proc")) {
            const std::string process = entry.path().filename().string();
            if (process.find_first_not_of("0123456789") != std::string::npos) continue;
            const std::string parent = std::to_string(FieldOf(process, 2));
            if (FieldOf(parent, 2) != getpid() || FieldOf(process, 12) < 20) continue;
            kill(std::stoi(process), signal);
            return;
        }
}

TEST_F(BatchRun, ABadFileFailsOnlyItsOwnRow) {
    std::string points = "1 3000\n";  // a spline through them takes many seconds
    for (int i = 0; i < 3000; ++i)
        points += "p " + std::to_string(i * i % 4001) + ' ' + std::to_string(i) + " 0 " +
                  std::to_string(i * i % 3989) + ' ' + std::to_string(i * 7 % 3001) + " 0 1\n";
    for (const char* name : {"hangs.rsf", "dies.rsf"})
        folder.Write(name, points);
    folder.Write("huge.tfw", std::string(12 << 20, '1'));
    folder.Write("module.tif", "for GDAL, whose module needs more than the limit\n");
    // AddressSanitizer ends a process at its limit before it can report that.
#ifdef __SANITIZE_ADDRESS__
    const char* const at_limit = "Crash";
#else
    const char* const at_limit = "OutOfMemory";
#endif
    const std::string limits[][3] = {{"hangs.rsf", "Timeout", "--timeout 0.7 --fit tps"},
                                     {"dies.rsf", "Crash", "--fit tps"},
#ifndef __SANITIZE_ADDRESS__
                                     {"module.tif", at_limit, "--memory 8"},
#endif
                                     {"huge.tfw", at_limit, "--memory 8"}};
    for (const auto& [file, type, limit] : limits) {
        Strings names(8, "a.tfw");  // quick ones, so that others wait behind the bad one
        names.push_back(file);
        names.insert(names.end(), 8, "b.tfw");
        std::thread killer;
        if (file == "dies.rsf") killer = std::thread(KillBusyWorker, SIGSEGV);
        const ToolRun run = RunTool(Words("batch --jobs 1 " + limit), {.in = Names(names)});
        if (killer.joinable()) killer.join();
        EXPECT_EQ(run.status, 3) << file << run.err;
        const auto rows = run.Objects();
        ASSERT_EQ(FilesOf(run), names);
        for (std::size_t i = 0; i < rows.size(); ++i)
            EXPECT_EQ(rows[i]["mapanchor"].value("/error/type"_json_pointer, ""), i == 8 ? type : "")
                << rows[i];
    }
}

TEST_F(BatchRun, ShardsTogetherAreTheWhole) {
    Strings all;
    for (const char* shard : {"1/3", "2/3", "3/3"})
        for (const std::string& file : FilesOf(RunTool({"batch", "--shard", shard, folder / "."})))
            all.push_back(file);
    std::sort(all.begin(), all.end());
    EXPECT_EQ(all, walked);
    for (const char* wrong : {"0/3", "4/3", "1", "1/3x"})
        folder.ExpectRun(std::string("batch %. --shard ") + wrong, 64);
}

TEST_F(BatchRun, ResumesWhatWasTornOff) {
    const std::string whole = RunTool({"batch", folder / "."}).out;
    const std::size_t second_line = whole.find('\n') + 1;
    // What an earlier run left, and how this one ends.
    const std::pair<std::string, int> cases[] = {{"", 3},
                                                 {whole.substr(0, second_line), 3},
                                                 {whole.substr(0, second_line + 40), 3},
                                                 {whole.substr(0, second_line) + "{\"descr\n", 3},
                                                 {whole, 0}};
    for (const auto& [left, status] : cases) {
        folder.Write("rows.jsonl", left);
        EXPECT_EQ(folder.ExpectRun("batch --resume %rows.jsonl %.", status).out, "");
        folder.ExpectFile("rows.jsonl", whole);
    }
}

TEST_F(BatchRun, ResumeTouchesNothingThatIsNotItsOwn) {
    const std::string row = RunTool({"batch", folder / "a.tfw"}).out;
    for (const std::string& foreign :
         {std::string("precious"), std::string("no rows\nat all\n"), std::string("{"), row + "\n", row + "x",
          row + "x\n" + row, std::string(R"({"description":"mine"})"), std::string(kWorldFile),
          std::string(R"({"description":"mine","mapping":)")}) {
        const std::string file = folder.Write("foreign", foreign);
        EXPECT_EQ(RunTool({"batch", "--resume", file, folder / "."}).status, 2) << foreign;
        EXPECT_EQ(TempFolder::Slurp(file), foreign);
    }
    const std::string rows = folder.Write("rows", row);
    const int other_run = open(rows.c_str(), O_RDONLY);
    ASSERT_EQ(flock(other_run, LOCK_EX), 0);
    const struct {
        std::vector<std::string> words;
        int status;
        const char* message;
    } refusals[] = {{{folder / "rows"}, 2, "another run"},
                    {{"/proc/self/mem"}, 2, "Input/output error"},
                    {{"/dev/null"}, 2, "regular file"},
                    {{folder / "missing/rows"}, 2, "No such file"},
                    {{""}, 64, "empty"},
                    {{folder / "new", "--to", "csv"}, 64, "--to excludes --resume"},
                    {{folder / "new", "--index", "i.gpkg"}, 64, "--index excludes --resume"}};
    for (const auto& refusal : refusals) {
        std::vector<std::string> words = {"batch", folder / "b.tfw", "--resume"};
        words.insert(words.end(), refusal.words.begin(), refusal.words.end());
        const ToolRun run = RunTool(words);
        EXPECT_EQ(run.status, refusal.status) << refusal.message;
        EXPECT_NE(run.err.find(refusal.message), std::string::npos) << run.err;
    }
    close(other_run);
    EXPECT_EQ(TempFolder::Slurp(rows), row);
    EXPECT_FALSE(fs::exists(folder / "new"));
}

TEST_F(BatchRun, NamesWithoutExactlyOneRowAreReported) {
    const auto row = [](const std::string& name) {
        return R"({"description":")" + name + R"(","mapanchor":{"schemaVersion":2,"ok":true}})" + "\n";
    };
    const std::string a = row("a"), b = row("b c");
    folder.Write("list", "a\r\nb c\n\nd");
    const struct {
        std::string rows;
        int status;
        std::string out;
        std::string err;
    } cases[] = {{a + row("d") + b, 0, "", ""},
                 {a, 3, "b c\nd\n", ""},
                 {"", 3, "a\nb c\nd\n", ""},
                 {a + b + a + row("d") + a, 3, "", "2 rows too many for a"},
                 {a + b + row("d") + row("e"), 3, "", "line 4 is of a file that is not in the list: e"},
                 {a + b + row("d").substr(0, 30), 3, "d\n", "not written to its end"},
                 {a + "{}\n" + b, 2, "", "line 2 is not a row"}};
    for (const auto& [rows, status, out, err] : cases) {
        folder.Write("rows", rows);
        const ToolRun run = folder.ExpectRun("batch --missing %list %rows", status, {}, {err});
        EXPECT_EQ(run.out, out) << rows;
    }
    folder.Write("more", b);
    folder.Write("rows", a);
    EXPECT_EQ(RunTool({"batch", "--missing", "-", "-0", folder / "rows", folder / "more"},
                      {.in = std::string("a\0b c\0x\ny\0", 11)})
                  .out,
              std::string("x\ny\0", 4));
    for (const auto& [words, status] : {std::pair("batch --missing %none %rows", 2),
                                        {"batch --missing %list %none", 2},
                                        {"batch --missing %list", 64},
                                        {"batch --missing %list --shard 1/2 %rows", 64}})
        folder.ExpectRun(words, status);
}

TEST_F(BatchRun, NamesThatAreNotUtf8StayApart) {
    const std::vector<std::string> names = {"\xFF%.tfw", "\xFE%.tfw", "\xEF\xBF\xBD%.tfw"};
    for (int run = 0; run < 2; ++run) {
        RunTool({"batch", "--resume", folder / "rows"}, {.in = Names(names)});
        Strings bytes;
        for (const json& row : ToolRun{0, TempFolder::Slurp(folder / "rows"), ""}.Objects())
            bytes.push_back(row.value("descriptionBytes", ""));
        EXPECT_EQ(bytes, (Strings{folder / "%FF%25.tfw", folder / "%FE%25.tfw", ""}));
    }
}

// Each row: a command of a shell, with the tool as $0, and what it comes to.
TEST_F(BatchRun, StreamsThatAreClosedOrNoList) {
    ASSERT_EQ(mkfifo((folder / "go").c_str(), 0600), 0);
    const struct {
        const char* command;
        int status;
        const char* out;
        const char* err;
    } rows[] = {{"$0 batch <.", 2, "", "Is a directory"},
                {"$0 info - <.", 2, "", "Is a directory"},
                {"$0 batch <&-", 2, "", "it is closed"},
                {"$0 ext - <&-", 2, "", "it is closed"},
                {"head -c 70000 /dev/zero | $0 batch", 2, "", "longer than 65536 bytes; end each"},
                {"head -c 70000 /dev/zero | $0 info -", 2, "", "longer than 65536 bytes; end each"},
                {"$0 info a.tfw >&-", 2, "", "Bad file descriptor"},
                {"$0 batch -j2 deep <&- 2>&- | grep -c true", 0, "2\n", ""},
                {"$0 batch --resume r deep <&- >&- 2>&-; grep -c true r", 0, "2\n", ""},
                {"(read x <go; exec $0 batch deep) | (exec <&-; echo >go)", 141, "", ""},
                {"(read x <go; exec $0 --help) | (exec <&-; echo >go)", 141, "", ""}};
    for (const auto& row : rows) {
        const ToolRun run =
            RunTool({"-c", "set -o pipefail; cd '" + (folder / ".") + "'; " + row.command, MAPANCHOR_TOOL},
                    {.program = "/bin/bash"});
        EXPECT_EQ(run.status, row.status) << row.command;
        EXPECT_EQ(run.out, row.out) << row.command;
        EXPECT_TRUE(*row.err ? run.err.find(row.err) != std::string::npos : run.err.empty()) << run.err;
    }
}

TEST_F(BatchRun, StatusOfFailuresAlone) {
    folder.Write("worse.tab", "no table");
    for (const auto& [files, status] : {std::pair{"%bad.tab %worse.tab", 5},
                                        {"%none.tfw %nothing.tfw", 2},
                                        {"%bad.tab %none.tfw", 2},
                                        {"%bad.tab %none.tfw %a.tfw", 3}})
        folder.ExpectRun(std::string("batch ") + files, status);
}

TEST_F(BatchRun, RowsOfOtherKinds) {
    folder.Write("a,\"1\".tfw", kWorldFile);
    const std::string files = " --size 100x100 %deep/c.tfw %none.tfw %a,\"1\".tfw";
    const std::string csv = folder.ExpectRun("batch --to csv" + files, 3).out;
    EXPECT_EQ(csv.rfind("description,ok,referenceType,epsg,", 0), 0U) << csv;
    EXPECT_EQ(std::count(csv.begin(), csv.end(), '\n'), 4);
    for (const std::string& row :
         {folder / "deep/c.tfw,true,WLD,EPSG:4326,100,100,10,40,20,50,,,\n",
          folder / "none.tfw,false,,,100,100,,,,,,BFileNotFoundException,",
          std::string("\"").append(folder / "a,\"\"1\"\".tfw\",true,WLD,,100,100,,,,,,,\n")})
        EXPECT_NE(csv.find("\n" + row), std::string::npos) << csv;
    const std::string sequence = folder.ExpectRun("batch --to geojsonseq" + files, 3).out;
    EXPECT_EQ(sequence[0], '\x1e');
    const json first = json::parse(sequence.substr(1, sequence.find('\n')));
    EXPECT_EQ(first["bbox"], json({10.0, 40.0, 20.0, 50.0}));
    EXPECT_EQ(first["geometry"]["type"], "Polygon");
    EXPECT_NE(sequence.find("\n\x1e{\"type\":\"Feature\",\"geometry\":null"), std::string::npos) << sequence;
}

TEST_F(BatchRun, AllMapsOfAllPagesHaveARow) {
    const GeoPdf::Viewport map;
    const std::string page = "<< /Type /Page /Parent 2 0 R " + map.page + " /VP [ " + map.Entry();
    const std::string pdf =
        PlainPdf({"<< /Type /Catalog /Pages 2 0 R >>", "<< /Type /Pages /Kids [3 0 R 6 0 R] /Count 2 >>",
                  page + GeoPdf::Viewport{.box = "[0 0 306 396]"}.Entry() + " ] >>", map.Measure(),
                  "<< " + map.system + " >>", page + " ] >>"});
    folder.Write("maps.pdf", pdf);
    const ToolRun run = folder.ExpectRun("batch --all-maps %a.tfw %maps.pdf", 0);
    EXPECT_EQ(FilesOf(run), (Strings{"a.tfw", "maps.pdf", "maps.pdf", "maps.pdf"}));
    std::vector<int> pages;
    std::vector<bool> first_in_use;
    for (const json& row : run.Objects()) {
        if (!row["mapanchor"].contains("pdfPage")) continue;
        pages.push_back(row["mapanchor"]["pdfPage"]["number"]);
        first_in_use.push_back(row["mapanchor"]["pdfPage"]["maps"][0]["inUse"]);
    }
    EXPECT_EQ(pages, (std::vector<int>{1, 1, 2}));
    EXPECT_EQ(first_in_use, (std::vector<bool>{true, false, true}));
    folder.ExpectRun("batch --all-maps --to stac %maps.pdf", 64);
}

TEST_F(BatchRun, AnIndexHoldsTheFootprints) {
    GDALAllRegister();
    for (const std::string name : {"index.gpkg", "index.fgb"}) {
        const ToolRun run = folder.ExpectRun("batch --size 100x100 --index %" + name + " %.", 3);
        EXPECT_EQ(run.Objects().size(), walked.size());
        EXPECT_EQ(run.err.find("1 row has no footprint") != std::string::npos, name == "index.fgb")
            << run.err;
        const GDALDatasetUniquePtr dataset(GDALDataset::Open((folder / name).c_str(), GDAL_OF_VECTOR));
        ASSERT_TRUE(dataset) << name;
        OGREnvelope extent;
        EXPECT_EQ(dataset->GetLayer(0)->GetExtent(&extent), OGRERR_NONE);
        EXPECT_NEAR(extent.MaxX, 20.0, 1e-9);
        Strings locations;
        for (const auto& row : *dataset->GetLayer(0)) {
            locations.push_back(fs::relative(row->GetFieldAsString("location"), folder / ".").string());
            EXPECT_EQ(row->GetGeometryRef() != nullptr, locations.back() != "bad.tab");
        }
        std::sort(locations.begin(), locations.end());
        Strings expected = walked;
        if (name == "index.fgb") expected.erase(expected.begin() + 2);  // it stores no row without an area
        EXPECT_EQ(locations, expected);
    }
    EXPECT_EQ(RunTool({"batch", "--index", folder / "index.gpkg", folder / "."}).status, 2);
    for (const char* foreign : {"a.tfw", "foreign.gpkg"}) {
        fs::copy_file(folder / "b.prj", folder / "foreign.gpkg", fs::copy_options::skip_existing);
        const std::string before = TempFolder::Slurp(folder / foreign);
        EXPECT_EQ(RunTool({"batch", "--overwrite", "--index", folder / foreign, folder / "."}).status, 2);
        EXPECT_EQ(TempFolder::Slurp(folder / foreign), before);
    }
    EXPECT_EQ(RunTool({"batch", "--overwrite", "--index", folder / "index.gpkg", folder / "."}).status, 3);
    EXPECT_EQ(RunTool({"batch", "--index", folder / "index.nothing", folder / "."}).status, 2);
}

}  // namespace
