#include "GdalFiles.h"
#include "RunTool.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>

namespace {

/// Thirty points, some of them near one another, and one that is 40 pixels off.
std::string Clicks() {
    std::string text = "pixel,line,easting,northing,name\n";
    for (int i = 0; i < 30; ++i) {
        const double x = i % 3 == 2 ? 500 + i : (i * 617) % 3000;
        const double y = i % 3 == 2 ? 500 + 2 * i : (i * 331) % 2000;
        const double off = i == 7 ? 40 : (i * 37 % 11) / 10.0 - 0.5;
        text += std::to_string(x + off) + "," + std::to_string(y) + "," + std::to_string(600000 + 2 * x) +
                "," + std::to_string(5200000 - 2 * y) + ",\"Point <" + std::to_string(i) + ">\"\n";
    }
    return text;
}

/// The page as a browser has it after the script that is added at its end; empty without one.
std::string Browse(const ToolFolder& folder, const std::string& page,
                   const std::vector<std::string>& options) {
    ToolSetting browser;
    browser.program = "/usr/bin/chromium";
    browser.environment.emplace_back("HOME", folder / "");
    std::vector<std::string> words = {"--headless", "--no-sandbox", "--disable-gpu",
                                      "--window-size=1000,1600"};
    words.insert(words.end(), options.begin(), options.end());
    words.push_back("file://" + page);
    return RunTool(words, browser).out;
}

TEST(ReportPage, IsOnePageThatABrowserShowsWithoutOverlaps) {
    const ToolFolder folder;
    folder.Write("p.csv", Clicks());
    const std::string scan = "georeference %/scan.png --size 3000x2000 --crs EPSG:25832 --gcps %/p.csv ";
    folder.ExpectRun(scan + "--report %/r.html", 3, {}, {"r.html"});
    const std::string page = TempFolder::Slurp(folder / "r.html");
    EXPECT_NE(page.find("Point &lt;7&gt;"), std::string::npos);
    for (const char* elsewhere : {"http://", "https://", " src=", "@import", "url("})
        EXPECT_EQ(page.find(elsewhere), std::string::npos) << elsewhere;
    folder.ExpectRun(scan + "--report %/r.html", 2, {}, {"exists"});
    folder.ExpectRun("georeference %/a.png --size 9x9 --bounds 1,2,3,4 --report %/s.html", 64, {},
                     {"--report"});
    if (!std::filesystem::exists("/usr/bin/chromium")) GTEST_SKIP() << "chromium is not installed";
    // The table by residual, the largest first; the texts that meet.
    folder.Write("look.html", page + R"(<script>
        [...document.querySelectorAll('th button')].find(b => b.textContent === 'residual px').click();
        const boxes = [...document.querySelectorAll('svg text')].map(t => t.getBoundingClientRect());
        let meets = 0;
        boxes.forEach((a, i) => boxes.slice(i + 1).forEach(b => {
          if (a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom) ++meets; }));
        const first = document.querySelector('tbody tr').cells[0].textContent;
        document.title = `${boxes.length > 15} ${meets} ${first}`;</script>)");
    const std::string dom = Browse(folder, folder / "look.html", {"--dump-dom"});
    EXPECT_NE(dom.find("<title>true 0 Point &lt;7&gt;</title>"), std::string::npos)
        << dom.substr(0, dom.find("</head>"));
    Browse(folder, folder / "r.html", {"--screenshot=" + (folder / "shot.png")});
    const auto pixels = GdalFiles::Pixels(folder / "shot.png");
    EXPECT_GT(pixels.size(), 1000000U);
    EXPECT_GT(std::set<std::uint8_t>(pixels.begin(), pixels.end()).size(), 50U) << "a blank page";
}

}  // namespace
