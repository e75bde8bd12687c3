// Random references saved and read again: what a sidecar can store comes back.

#include "Outcomes.h"

#include <cmath>
#include <random>

namespace MapAnchor {
namespace {

using namespace Tellurion;

TEST(RoundTrip, KeepsAffinesAndPoints) {
    // Where the rasters of a system are, and the size of their pixels.
    const std::tuple<const char*, double, double, double> places[] = {
        {"32633", 500000, 4100000, 10}, {"2277", 3000000, 10100000, 2.5}, {"4326", 10, 50, 0.00125}};
    const TempFolder folder{TempFolder::InMemory()};
    const LogCapture log;
    std::mt19937_64 random(20261124);
    const auto part = [&] { return std::uniform_real_distribution<double>(-1.0, 1.0)(random); };
    for (int round = 0; round < 60; ++round) {
        const auto& [epsg, x, y, pixel] = places[round % 3];
        std::vector<BPointPair> pairs;
        // The first are written in several pieces.
        for (std::size_t count = round == 0 ? 2000 : 1 + random() % 200; pairs.size() < count;)
            pairs.emplace_back(std::lround(4000 * part()), std::lround(4000 * part()), x * (1 + 0.1 * part()),
                               y * (1 + 0.1 * part()), 0.0, "\xC3\x85, (2)", true);
        BGeoReference points = References::WithPoints(pairs);
        References::SetSystem(points, epsg);
        for (const char* name : {"map.tfw", "map.rsf", "map.tab", "map.ers"}) {
            const bool ers = std::string(name) == "map.ers";
            const double size = pixel * std::exp(part()), turn = ers ? 0 : 3 * part();
            const double a = size * std::cos(turn), b = size * std::sin(turn);
            const BGeoReference affine =
                References::Of(epsg, {a, b, x + size * part(), b, -a, y + size * part()});
            // By name a system that has a name of ER Mapper's is not written.
            if (ers)
                Written(EReferenceType::ERS, folder / name, affine, 0);
            else
                Written(folder / name, affine);
            const BGeoReference back = Good(folder / name);
            EXPECT_EQ(CodeOf(back), std::string("EPSG:") + epsg);
            for (const BPoint& at : {BPoint(0, 0, 0), BPoint(200, 0, 0), BPoint(0, 100, 0)}) {
                const BPoint before = affine.MathTransform->ConvertSourceToTarget(at);
                const BPoint after = back.MathTransform->ConvertSourceToTarget(at);
                ASSERT_LT(std::hypot(before.x - after.x, before.y - after.y), 1e-5 * pixel) << name;
            }
        }
        for (const char* name : {"map.rsf", "map.tab"}) {
            Written(folder / name, points);
            const BGeoReference back = Good(folder / name);
            ASSERT_EQ(back.PointPairVector.size(), pairs.size());
            for (std::size_t i = 0; i < pairs.size(); ++i) {
                const BPointPair &before = pairs[i], &after = back.PointPairVector[i];
                ASSERT_TRUE(after.Name == before.Name && after.Column == before.Column &&
                            after.Row == before.Row);
                ASSERT_LT(std::hypot(after.World.x - before.World.x, after.World.y - before.World.y), 2e-11);
            }
        }
    }
}

}  // namespace
}  // namespace MapAnchor
