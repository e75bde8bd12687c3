#include <gtest/gtest.h>

#include "TempFolder.h"
#include "sidecar/rsf/RsfFile.h"
#include "sidecar/rsf/SplitTokens.h"

#include <array>
#include <filesystem>
#include <string>
#include <vector>

namespace MapAnchor {
namespace {

using Tokens = std::vector<std::string>;

Tokens Split(std::string text, std::size_t limit = 32) {
    std::array<char*, 32> tokens{};
    const std::size_t count = SplitTokens(text.data(), Delimiters("( ,)"), tokens.data(), limit);
    return {tokens.begin(), tokens.begin() + static_cast<std::ptrdiff_t>(count)};
}

TEST(SplitTokens, CutsAtDelimitersAndQuotes) {
    const std::pair<const char*, Tokens> cases[] = {
        {"", {}},
        {" ,()", {}},
        {"\"", {}},
        {"a \"", {"a", ""}},
        {"  (1.5, 2.5) (3, 4) Label \"P 1, (x)\",", {"1.5", "2.5", "3", "4", "Label", "P 1, (x)"}},
        {"(1,2)(3,4)Label\"P\"", {"1", "2", "3", "4", "P"}},
        {"\"a b\" c", {"a b", "c"}},
        {"\"\" c", {"", "c"}},
        {"a \"\"", {"a", ""}},
        {"a \"b c", {"a", "b c"}},
        {"\"a\"b c", {"a", "c"}},
        {"a b ,)", {"a", "b"}},
        {"a\tb c", {"a\tb", "c"}}};
    for (const auto& [text, tokens] : cases)
        EXPECT_EQ(Split(text), tokens) << text;
    EXPECT_EQ(Split("a b c d", 2), (Tokens{"a", "b"}));
    EXPECT_EQ(Split("a \"b", 1), (Tokens{"a"}));
    EXPECT_EQ(Split("a", 0), Tokens{});
}

// Neither the header's count nor the length of a sparse file makes room for points.
TEST(RsfFile, GrowsWithThePointsThatAreThere) {
    const TempFolder folder;
    const std::string file = folder.Write("sparse.rsf", "1 2000000000\nP 1 2 0 4 5 6 1\n");
    std::filesystem::resize_file(file, std::uintmax_t{3} << 30U);
    Tellurion::BFile in{Tellurion::BString(file)};
    ASSERT_TRUE(in.Open(Tellurion::EFileMode::Read, Tellurion::EFileMode::Text));
    const RsfFile rsf = ParseRsf(in, RsfPixels::Whole);
    EXPECT_EQ(rsf.points.size(), 1U);
    EXPECT_LT(rsf.points.capacity(), 10'000U);
    EXPECT_EQ(rsf.fault, RsfFile::Fault::BadRow);
}

}  // namespace
}  // namespace MapAnchor
