// Every world file, RSF, TAB and ERS file of the corpus against what is known of it. The
// systems are an independent reading of the names and clauses.

#include "Corpus.h"

namespace MapAnchor {
namespace {

using namespace Tellurion;

TEST(SidecarCorpus, WorldFiles) {
    const Texts systems = {{"lambert93", "EPSG:2154"}, {"nad27utm11", "EPSG:26711"}, {"nad83", "EPSG:4269"},
                           {"nztm", "EPSG:2193"},      {"texftus", "EPSG:2277"},     {"utm33n", "EPSG:32633"},
                           {"webmerc", "EPSG:3857"},   {"wgs84", "EPSG:4326"}};
    ForEachAnswer("wld", [&](Path file, const Json& answer) {
        const BGeoReference reference = Good(file);
        EXPECT_EQ(Json(References::Terms(reference)), answer["affine"]);
        ASSERT_EQ(reference.HasCoordSys(), std::filesystem::exists(file.replace_extension(".prj")));
        if (reference.HasCoordSys()) ExpectSystem(reference, systems, file.stem());
    });
}

TEST(SidecarCorpus, TabPointsAffineAndSystem) {
    // Without a code: parameters of its own, a local system, datum 0, which is no
    // particular one, and half a degree beside EPSG:2276.
    const Texts systems = {
        {"byte_nogeoref.tab", "EPSG:27700"}, {"byte_inconsistent_georef.tab", "EPSG:27700"},
        {"longlat_bounds.tab", "EPSG:4326"}, {"datum9999.tab", ""},
        {"mga55.tab", "EPSG:28355"},         {"nonearth.tab", ""},
        {"nad27_utm.tab", "EPSG:26711"},     {"nwt_grc.tab", ""},
        {"nwt_grd.tab", "EPSG:32712"},       {"texas_ftus.tab", ""}};
    const LogCapture log;
    ForEachAnswer("tab", [&](const Path& file, const Json& answer) {
        const BGeoReference reference = Good(file);
        Json points = Json::array();
        for (const BPointPair& pair : reference.PointPairVector)
            points.push_back({pair.World.x, pair.World.y, pair.Column, pair.Row, pair.Name.StdStr()});
        EXPECT_EQ(points, answer["points"]);
        ExpectTerms(reference, TermsOfGdal(answer["geoTransform"]), 1e-9);
        ExpectSystem(reference, systems, file.filename());
        // The clause means the same place on the Earth here and to GDAL.
        const BSharedPtr<BCoordSys> peer(BCoordSys::FromWKT(BString(answer["wkt"].get<std::string>())));
        ASSERT_TRUE(peer);
        EXPECT_EQ(reference.CoordSys->GetKind(), peer->GetKind());
        if (!peer->IsValid()) return;
        for (const BPointPair& pair : reference.PointPairVector) {
            const BPoint ours = reference.CoordSys->ConvertToGeodetic(pair.World);
            const BPoint theirs = peer->ConvertToGeodetic(pair.World);
            EXPECT_LT(std::hypot(ours.x - theirs.x, ours.y - theirs.y), 1e-10);
        }
    });
}

TEST(SidecarCorpus, RsfPointsAffineAndSystem) {
    const LogCapture log;
    const std::tuple<const char*, const char*, std::size_t, Six> answers[] = {
        {"v1.rsf", "none", 3, {0.01, 0, 10, 0, -0.01, 50}},
        {"v3_utm12.rsf", "EPSG:26712", 4, {10, 0, 500000, 0, -10, 4100000}},
        {"v4_spread.rsf", "EPSG:4326", 3, {}}};  // its points make no fit
    EXPECT_EQ(FilesOf("rsf", ".rsf").size(), std::size(answers)) << "a file that the table does not know";
    for (const auto& [name, system, points, terms] : answers) {
        const BGeoReference reference = Good(kCorpus / "rsf" / name);
        EXPECT_EQ(reference.PointPairVector.size(), points);
        EXPECT_EQ(CodeOf(reference), system);
        ASSERT_EQ(reference.HasMathTransform(), terms[0] != 0.0) << name;
        if (terms[0] != 0.0) ExpectTerms(reference, terms, 1e-9);
    }
}

TEST(SidecarCorpus, ErsAffineAndSystem) {
    const LogCapture log;
    // Where a header means another thing here than to GDAL: a registration cell ends the
    // reading, and longitudes in degrees and minutes are not a tag; nothing places the raster.
    const Texts thrown = {{"ers_dem.ers", kUnsupported}, {"references_ecw.ers", kNoReference}};
    const Texts systems = {
        {"8s.ers", "EPSG:26711"},     {"nad27utm11.ers", "EPSG:26711"}, {"nad83.ers", "EPSG:4269"},
        {"utm33n.ers", "EPSG:32633"}, {"wgs84.ers", "EPSG:4326"},       {"lambert93.ers", "EPSG:2154"},
        {"nztm.ers", "EPSG:2193"},    {"texftus.ers", "EPSG:2277"},     {"webmerc.ers", "EPSG:3857"}};
    ForEachAnswer("ers", [&](const Path& file, const Json& answer) {
        BGeoReference reference;
        const auto fails = thrown.find(file.filename());
        EXPECT_EQ(Roads::Read(file, reference).type, fails == thrown.end() ? "" : fails->second);
        if (fails != thrown.end()) return;
        Six expected = TermsOfGdal(answer["geoTransform"]);
        // Cell sizes are metres here, whatever the system's unit.
        for (const std::size_t size : {0U, 4U})
            expected[size] *= file.filename() == "texftus.ers" ? 3937.0 / 1200.0 : 1;
        ExpectTerms(reference, expected, 1e-9);
        ExpectSystem(reference, systems, file.filename());
    });
}

}  // namespace
}  // namespace MapAnchor
