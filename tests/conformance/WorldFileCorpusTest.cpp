// Every world file of the corpus against the numbers that it is known to hold.

#include <MapAnchor/BMapAnchor.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>
#include <map>

namespace MapAnchor {
namespace {

using namespace Tellurion;

const std::filesystem::path kFolder = std::filesystem::path(MAPANCHOR_CORPUS) / "wld";

// Systems of the prj files, by the file's stem: an independent reading of their names.
const std::map<std::string, std::string> kSystems = {
    {"lambert93", "EPSG:2154"}, {"nad27utm11", "EPSG:26711"}, {"nad83", "EPSG:4269"},
    {"nztm", "EPSG:2193"},      {"texftus", "EPSG:2277"},     {"utm33n", "EPSG:32633"},
    {"webmerc", "EPSG:3857"},   {"wgs84", "EPSG:4326"},
};

TEST(WorldFileCorpus, AffineAndSystemOfEveryFile) {
    const auto expected = nlohmann::json::parse(std::ifstream(kFolder / "expected.json"));
    ASSERT_FALSE(expected.empty());
    for (const auto& [name, answer] : expected.items()) {
        SCOPED_TRACE(name);
        BGeoReference reference;
        BString used;
        ASSERT_NO_THROW(BMapAnchor::Read(BString((kFolder / name).string()), reference, used, 0, 0,
                                         EMathTransformType::Affine, nullptr));
        double t[6];
        reference.MathTransform->GetAffineParameters(t[0], t[1], t[2], t[3], t[4], t[5]);
        for (std::size_t i = 0; i < 6; ++i)
            EXPECT_EQ(t[i], answer["affine"][i].get<double>()) << "term " << i;

        const std::string stem = std::filesystem::path(name).stem().string();
        const bool has_prj = std::filesystem::exists(kFolder / (stem + ".prj"));
        ASSERT_EQ(reference.HasCoordSys(), has_prj);
        if (!has_prj) continue;
        const auto system = kSystems.find(stem);
        ASSERT_NE(system, kSystems.end()) << "a prj file that this table does not know";
        EXPECT_EQ(reference.CoordSys->ToEPSGCode().StdStr(), system->second);
    }
}

}  // namespace
}  // namespace MapAnchor
