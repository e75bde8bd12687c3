// Every world file, RSF, TAB and ERS file of the corpus against what is known of it.

#include "Corpus.h"

namespace MapAnchor {
namespace {

using namespace Tellurion;

BGeoReference ReadGood(const std::filesystem::path& file) {
    BGeoReference reference;
    EXPECT_EQ(Roads::Read(file.string(), reference).type, "");
    return reference;
}

using Systems = std::map<std::string, std::string>;

void ExpectSystem(const BGeoReference& reference, const Systems& systems, const std::string& name) {
    const auto system = systems.find(name);
    ASSERT_NE(system, systems.end()) << "a file that the table of systems does not know";
    EXPECT_EQ(CodeOf(reference), system->second);
}

// Systems of the prj files, by the file's stem: an independent reading of their names.
const Systems kPrjSystems = {
    {"lambert93", "EPSG:2154"}, {"nad27utm11", "EPSG:26711"}, {"nad83", "EPSG:4269"},
    {"nztm", "EPSG:2193"},      {"texftus", "EPSG:2277"},     {"utm33n", "EPSG:32633"},
    {"webmerc", "EPSG:3857"},   {"wgs84", "EPSG:4326"},
};

TEST(SidecarCorpus, WorldFiles) {
    ForEachAnswer("wld", [](std::filesystem::path file, const Json& answer) {
        const BGeoReference reference = ReadGood(file);
        EXPECT_EQ(Json(References::Terms(reference)), answer["affine"]);
        ASSERT_EQ(reference.HasCoordSys(), std::filesystem::exists(file.replace_extension(".prj")));
        if (reference.HasCoordSys()) ExpectSystem(reference, kPrjSystems, file.stem());
    });
}

// The systems by an independent reading of their clauses and names.
const Systems kTabSystems = {
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
    ForEachAnswer("tab", [](const std::filesystem::path& file, const Json& answer) {
        const BGeoReference reference = ReadGood(file);
        Json points = Json::array();
        for (const BPointPair& pair : reference.PointPairVector)
            points.push_back({pair.World.x, pair.World.y, pair.Column, pair.Row, pair.Name.StdStr()});
        EXPECT_EQ(points, answer["points"]);
        ExpectTerms(reference, TermsOfGdal(answer["geoTransform"]), 1e-9);
        ExpectSystem(reference, kTabSystems, file.filename());
        // What the clause says, GDAL says as well: the same place on the Earth.
        const BSharedPtr<BCoordSys> peer(BCoordSys::FromWKT(BString(answer["wkt"].get<std::string>())));
        ASSERT_TRUE(peer);
        EXPECT_EQ(reference.CoordSys->GetKind(), peer->GetKind());
        if (!peer->IsValid()) return;
        for (const BPointPair& pair : reference.PointPairVector) {
            const BPoint ours = reference.CoordSys->ConvertToGeodetic(pair.World);
            const BPoint theirs = peer->ConvertToGeodetic(pair.World);
            EXPECT_NEAR(ours.x, theirs.x, 1e-10);
            EXPECT_NEAR(ours.y, theirs.y, 1e-10);
        }
    });
}

struct RsfAnswer {
    const char* name;
    const char* system;
    std::size_t points;
    Six terms;  ///< all zero where the points make no fit
};
constexpr RsfAnswer kRsfAnswers[] = {
    {"v1.rsf", "none", 3, {0.01, 0, 10, 0, -0.01, 50}},
    {"v3_utm12.rsf", "EPSG:26712", 4, {10, 0, 500000, 0, -10, 4100000}},
    {"v4_spread.rsf", "EPSG:4326", 3, {}},
};

TEST(SidecarCorpus, RsfPointsAffineAndSystem) {
    const LogCapture log;
    EXPECT_EQ(FilesOf("rsf", ".rsf").size(), std::size(kRsfAnswers)) << "a file that the table does not know";
    for (const RsfAnswer& answer : kRsfAnswers) {
        SCOPED_TRACE(answer.name);
        const BGeoReference reference = ReadGood(kCorpus / "rsf" / answer.name);
        EXPECT_EQ(reference.PointPairVector.size(), answer.points);
        EXPECT_EQ(CodeOf(reference), answer.system);
        ASSERT_EQ(reference.HasMathTransform(), answer.terms[0] != 0.0);
        if (reference.HasMathTransform()) ExpectTerms(reference, answer.terms, 1e-9);
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

const Systems kErsSystems = {
    {"8s.ers", "EPSG:26711"},     {"nad27utm11.ers", "EPSG:26711"}, {"nad83.ers", "EPSG:4269"},
    {"utm33n.ers", "EPSG:32633"}, {"wgs84.ers", "EPSG:4326"},       {"lambert93.ers", "EPSG:2154"},
    {"nztm.ers", "EPSG:2193"},    {"texftus.ers", "EPSG:2277"},     {"webmerc.ers", "EPSG:3857"},
};

TEST(SidecarCorpus, ErsAffineAndSystem) {
    const LogCapture log;
    ForEachAnswer("ers", [](const std::filesystem::path& file, const Json& answer) {
        BGeoReference reference;
        const Thrown thrown = Roads::Read(file.string(), reference);
        const auto found = kErsDifferences.find(file.filename());
        const auto difference = found == kErsDifferences.end() ? ErsDifference{"", 1, ""} : found->second;
        EXPECT_EQ(thrown.type, difference.thrown);
        if (*difference.thrown) return;
        Six expected = TermsOfGdal(answer["geoTransform"]);
        for (const std::size_t size : {0U, 4U})
            expected[size] *= difference.cell_scale;
        ExpectTerms(reference, expected, 1e-9);
        ExpectSystem(reference, kErsSystems, file.filename());
    });
}

}  // namespace
}  // namespace MapAnchor
