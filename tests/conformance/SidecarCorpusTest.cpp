// Every RSF, TAB and ERS file of the corpus against what is known of it.

#include <Tellurion/BException.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "LogCapture.h"
#include "References.h"
#include "Roads.h"

#include <cmath>
#include <filesystem>
#include <fstream>
#include <map>

namespace MapAnchor {
namespace {

using namespace Tellurion;
using nlohmann::json;

const std::filesystem::path kCorpus = MAPANCHOR_CORPUS;

json Answers(const char* folder) {
    const auto answers = json::parse(std::ifstream(kCorpus / folder / "expected.json"));
    EXPECT_FALSE(answers.empty());
    return answers;
}

std::string CodeOf(const BGeoReference& reference) {
    return reference.HasCoordSys() ? reference.CoordSys->ToEPSGCode().StdStr() : "none";
}

/// In the order of GDAL.
void ExpectTerms(const BGeoReference& reference, const json& geo_transform) {
    ASSERT_TRUE(reference.HasMathTransform());
    const auto t = References::Terms(reference);
    const double got[] = {t[2], t[0], t[1], t[5], t[3], t[4]};
    for (std::size_t i = 0; i < 6; ++i) {
        const double expected = geo_transform[i].get<double>();
        EXPECT_NEAR(got[i], expected, 1e-9 * std::max(1.0, std::fabs(expected))) << "term " << i;
    }
}

// The systems by an independent reading of their clauses and names.
const std::map<std::string, std::string> kTabSystems = {
    {"byte_inconsistent_georef.tab", "EPSG:27700"},
    {"byte_nogeoref.tab", "EPSG:27700"},
    {"datum9999.tab", ""},  // parameters of its own
    {"longlat_bounds.tab", "EPSG:4326"},
    {"mga55.tab", "EPSG:28355"},
    {"nad27_utm.tab", "EPSG:26711"},
    {"nonearth.tab", ""},           // a local system
    {"nwt_grc.tab", ""},            // datum 0, which is no particular one
    {"nwt_grd.tab", "EPSG:32712"},  // the false northing of the south
    {"texas_ftus.tab", ""},         // half a degree beside EPSG:2276
};

TEST(SidecarCorpus, TabPointsAffineAndSystem) {
    const LogCapture log;
    const json answers = Answers("tab");
    for (const auto& [name, answer] : answers.items()) {
        SCOPED_TRACE(name);
        BGeoReference reference;
        ASSERT_EQ(Roads::Read((kCorpus / "tab" / name).string(), reference).type, "");
        const json& points = answer["points"];
        ASSERT_EQ(reference.PointPairVector.size(), points.size());
        for (std::size_t i = 0; i < points.size(); ++i) {
            const BPointPair& pair = reference.PointPairVector[i];
            EXPECT_EQ(json({pair.World.x, pair.World.y, pair.Column, pair.Row, pair.Name.StdStr()}),
                      points[i]);
        }
        ExpectTerms(reference, answer["geoTransform"]);
        ASSERT_TRUE(kTabSystems.count(name)) << "a file that the table of systems does not know";
        EXPECT_EQ(CodeOf(reference), kTabSystems.at(name));
        // What the clause says, GDAL says as well: the same place on the Earth.
        const BSharedPtr<BCoordSys> peer(BCoordSys::FromWKT(BString(answer["wkt"].get<std::string>())));
        ASSERT_TRUE(peer);
        EXPECT_EQ(reference.CoordSys->GetKind(), peer->GetKind());
        if (!peer->IsValid()) continue;
        for (const BPointPair& pair : reference.PointPairVector) {
            const BPoint ours = reference.CoordSys->ConvertToGeodetic(pair.World);
            const BPoint theirs = peer->ConvertToGeodetic(pair.World);
            EXPECT_NEAR(ours.x, theirs.x, 1e-10);
            EXPECT_NEAR(ours.y, theirs.y, 1e-10);
        }
    }
}

struct RsfAnswer {
    const char* name;
    const char* system;
    std::size_t points;
    std::array<double, 6> terms;  ///< all zero where the points make no fit
};
constexpr RsfAnswer kRsfAnswers[] = {
    {"v1.rsf", "none", 3, {0.01, 0, 10, 0, -0.01, 50}},
    {"v3_utm12.rsf", "EPSG:26712", 4, {10, 0, 500000, 0, -10, 4100000}},
    {"v4_spread.rsf", "EPSG:4326", 3, {}},
};

TEST(SidecarCorpus, RsfPointsAffineAndSystem) {
    const LogCapture log;
    std::size_t files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(kCorpus / "rsf"))
        if (entry.path().extension() == ".rsf") ++files;
    EXPECT_EQ(files, std::size(kRsfAnswers)) << "a file that the table does not know";
    for (const RsfAnswer& answer : kRsfAnswers) {
        SCOPED_TRACE(answer.name);
        BGeoReference reference;
        ASSERT_EQ(Roads::Read((kCorpus / "rsf" / answer.name).string(), reference).type, "");
        EXPECT_EQ(reference.PointPairVector.size(), answer.points);
        EXPECT_EQ(CodeOf(reference), answer.system);
        ASSERT_EQ(reference.HasMathTransform(), answer.terms[0] != 0.0);
        if (!reference.HasMathTransform()) continue;
        const auto got = References::Terms(reference);
        for (std::size_t i = 0; i < 6; ++i)
            EXPECT_NEAR(got[i], answer.terms[i], 1e-9 * std::max(1.0, std::fabs(answer.terms[i])));
    }
}

/// Where an ERS header of the corpus means another thing here than to GDAL.
struct ErsDifference {
    const char* thrown;  ///< by the road by name; empty for none
    double cell_scale;   ///< our cell size to GDAL's
    const char* reason;
};
const std::map<std::string, ErsDifference> kErsDifferences = {
    {"ers_dem.ers",
     {"BUnsupportedFileTypeException", 1,
      "a registration cell ends the reading here, and longitudes in degrees and minutes are no tag"}},
    {"references_ecw.ers",
     {"BFileContentNotValidException", 1, "nothing in it places the raster; GDAL does not open it at all"}},
    {"texftus.ers", {"", 3937.0 / 1200.0, "cell sizes are metres here, whatever the system's unit"}},
};

const std::map<std::string, std::string> kErsSystems = {
    {"8s.ers", "EPSG:26711"},     {"nad27utm11.ers", "EPSG:26711"}, {"nad83.ers", "EPSG:4269"},
    {"utm33n.ers", "EPSG:32633"}, {"wgs84.ers", "EPSG:4326"},       {"lambert93.ers", "EPSG:2154"},
    {"nztm.ers", "EPSG:2193"},    {"texftus.ers", "EPSG:2277"},     {"webmerc.ers", "EPSG:3857"},
};

TEST(SidecarCorpus, ErsAffineAndSystem) {
    const LogCapture log;
    const json answers = Answers("ers");
    for (const auto& [name, answer] : answers.items()) {
        SCOPED_TRACE(name);
        BGeoReference reference;
        const Thrown thrown = Roads::Read((kCorpus / "ers" / name).string(), reference);
        const auto found = kErsDifferences.find(name);
        const auto difference = found == kErsDifferences.end() ? ErsDifference{"", 1, ""} : found->second;
        EXPECT_EQ(thrown.type, difference.thrown);
        if (*difference.thrown) continue;
        json expected = answer["geoTransform"];
        for (const std::size_t size : {1U, 5U})
            expected[size] = expected[size].get<double>() * difference.cell_scale;
        ExpectTerms(reference, expected);
        ASSERT_TRUE(kErsSystems.count(name)) << "a file that the table of systems does not know";
        EXPECT_EQ(CodeOf(reference), kErsSystems.at(name));
    }
}

}  // namespace
}  // namespace MapAnchor
