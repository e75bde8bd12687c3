#include "import/CLGIDatum.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>

namespace VellumLib {
namespace {

/// FNV-1a: any digit or letter that changes shows.
std::uint64_t Digest() {
    std::uint64_t hash = 0xcbf29ce484222325;
    for (const auto& row : LGIDatumRows())
        for (const char c : std::string(row.code) + "|" + std::to_string(row.epsg) + "|" + row.name + "\n")
            hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3;
    return hash;
}

TEST(DatumTable, ContentIsWhatItWas) {
    EXPECT_EQ(LGIDatumRows().size(), 160U);
    EXPECT_EQ(Digest(), 0xce07b34dca5fc9dbU);
}

TEST(DatumTable, OneCodeStandsTwiceAndTheLaterRowStays) {
    const auto rows = LGIDatumRows();
    EXPECT_EQ(std::count_if(rows.begin(), rows.end(),
                            [](const LGIDatumRow& row) { return std::string(row.code) == "HIT"; }),
              2);
    EXPECT_EQ(LGIDatums().size(), 159U);
    const CLGIDatum& datum = LGIDatums().at("HIT");
    EXPECT_EQ(datum.EPSG, 4254);
    EXPECT_EQ(datum.Name, "PROVISIONAL SOUTH CHILEAN 1963 (Hito XVIII 1963)");
    EXPECT_EQ(datum.Code, "HIT");
}

}  // namespace
}  // namespace VellumLib
