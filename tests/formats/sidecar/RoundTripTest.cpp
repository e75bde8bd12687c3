// Random references through two sidecars, one after the other: what both can hold
// comes back.

#include "Outcomes.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <random>

namespace MapAnchor {
namespace {

using namespace Tellurion;

struct Kind {
    const char* extension;
    bool points;
    bool rotation;
    bool all_names;  ///< UTF-8, not Windows-1252
    bool marks;      ///< z and the enabled mark
};
constexpr Kind kKinds[] = {{"tfw", false, true, false, false},
                           {"rsf", true, true, true, true},
                           {"tab", true, true, false, false},
                           {"ers", false, false, false, false}};

struct Label {
    const char* given;
    const char* quoted;   ///< between quotes
    const char* in_1252;  ///< the same in Windows-1252
};
constexpr Label kLabels[] = {
    {"P 1", "P 1", "P 1"},
    {"", "", ""},
    {"a, (b) = c", "a, (b) = c", "a, (b) = c"},
    {"# no \"comment\"", "# no 'comment'", "# no 'comment'"},
    {"two\nlines", "two lines", "two lines"},
    {"\xC3\x85ngstr\xC3\xB6m \xE2\x82\xAC", "\xC3\x85ngstr\xC3\xB6m \xE2\x82\xAC",
     "\xC3\x85ngstr\xC3\xB6m \xE2\x82\xAC"},
    {"\xE5\x8C\x97\xE4\xBA\xAC 5", "\xE5\x8C\x97\xE4\xBA\xAC 5", "?? 5"},
};

/// Where a system's rasters lie, and how large their pixels are.
struct Place {
    const char* epsg;  ///< empty for no system
    double x, y, pixel;
};
constexpr Place kPlaces[] = {{"32633", 500000, 4100000, 10},
                             {"2277", 3000000, 10100000, 2.5},
                             {"4326", 10, 50, 0.00125},
                             {"", -1000, 1000, 1}};

class RoundTrip : public testing::Test {
protected:
    double Unit() { return std::uniform_real_distribution<double>(-1.0, 1.0)(random); }
    std::size_t Below(std::size_t count) { return random() % count; }

    BGeoReference RandomPoints(const Place& place, std::size_t count) {
        std::vector<BPointPair> pairs;
        for (std::size_t i = 0; i < count; ++i)
            pairs.emplace_back(static_cast<long>(Below(4000)) - 100, static_cast<long>(Below(4000)) - 100,
                               place.x * (1 + 0.1 * Unit()), place.y * (1 + 0.1 * Unit()), 100 * Unit(),
                               kLabels[Below(std::size(kLabels))].given, Below(4) != 0);
        return References::WithPoints(pairs);
    }
    BGeoReference RandomAffine(const Place& place, bool rotated) {
        const double size = place.pixel * std::exp(Unit());
        const double turn = rotated ? 3 * Unit() : 0.0;
        return References::WithAffine(size * std::cos(turn), size * std::sin(turn), place.x + size * Unit(),
                                      size * std::sin(turn), -size * std::cos(turn), place.y + size * Unit());
    }
    /// Saves and reads; false when the save was refused.
    bool Pass(const Kind& kind, const BGeoReference& reference, BGeoReference& back) const {
        const std::string file = folder / (std::string("map.") + kind.extension);
        // By name a system that ER Mapper has a name for goes without.
        const bool by_type = std::string(kind.extension) == "ers";
        const Thrown saved =
            by_type ? Roads::Save(EReferenceType::ERS, file, reference) : Roads::Save(file, reference);
        if (!saved.type.empty()) return false;
        EXPECT_EQ(Roads::Read(file, back).type, "");
        return true;
    }

    /// Through every two kinds that hold it; tells the check both and what came back, null
    /// when a save was refused.
    void ThroughTwo(const BGeoReference& given,
                    const std::function<void(const Kind&, const Kind&, const BGeoReference*)>& check) const {
        for (const Kind& first : kKinds)
            for (const Kind& second : kKinds) {
                if (!given.HasMathTransform() && (!first.points || !second.points)) continue;
                SCOPED_TRACE(std::string(first.extension) + " " + second.extension);
                BGeoReference between, back;
                const bool saved = Pass(first, given, between) && Pass(second, between, back);
                check(first, second, saved ? &back : nullptr);
            }
    }

    std::mt19937_64 random{20261124};
    const TempFolder folder{TempFolder::InMemory()};
    const LogCapture log;
};

const Label& LabelOf(const BString& given) {
    return *std::find_if(std::begin(kLabels), std::end(kLabels),
                         [&](const Label& label) { return given == BString(label.given); });
}

void ExpectPoints(const BGeoReference& given, const BGeoReference& got, bool all_names, bool marks) {
    ASSERT_EQ(got.PointPairVector.size(), given.PointPairVector.size());
    for (std::size_t i = 0; i < given.PointPairVector.size(); ++i) {
        const BPointPair& a = given.PointPairVector[i];
        const BPointPair& b = got.PointPairVector[i];
        const Label& label = LabelOf(a.Name);
        ASSERT_EQ(b.Name, BString(all_names ? label.quoted : label.in_1252));
        ASSERT_EQ(b.Column, a.Column);
        ASSERT_EQ(b.Row, a.Row);
        ASSERT_NEAR(b.World.x, a.World.x, 2e-11);
        ASSERT_NEAR(b.World.y, a.World.y, 2e-11);
        ASSERT_NEAR(b.World.z, marks ? a.World.z : 0.0, 1e-5);
        ASSERT_EQ(b.Enabled, !marks || a.Enabled);
    }
}

TEST_F(RoundTrip, PointsComeBack) {
    for (std::size_t round = 0; round < 40; ++round) {
        const Place& place = kPlaces[round % std::size(kPlaces)];
        BGeoReference given = RandomPoints(place, round < 8 ? round : Below(501));
        if (*place.epsg) References::SetSystem(given, place.epsg);
        ThroughTwo(given, [&](const Kind& first, const Kind& second, const BGeoReference* back) {
            ASSERT_EQ(back != nullptr, !given.PointPairVector.empty());
            if (!back) return;
            ExpectPoints(given, *back, first.all_names && second.all_names, first.marks && second.marks);
            // A TAB file always names a system.
            const bool through_tab = !first.marks || !second.marks;
            const std::string expected = *place.epsg ? std::string("EPSG:") + place.epsg : "";
            EXPECT_EQ(CodeOf(*back), *place.epsg || through_tab ? expected : "none");
        });
    }
}

TEST_F(RoundTrip, AffinesComeBack) {
    for (std::size_t round = 0; round < 40; ++round) {
        const Place& place = kPlaces[round % std::size(kPlaces)];
        const bool rotated = round % 8 >= 4;
        BGeoReference given = RandomAffine(place, rotated);
        if (*place.epsg) References::SetSystem(given, place.epsg);
        ThroughTwo(given, [&](const Kind& first, const Kind& second, const BGeoReference* back) {
            ASSERT_EQ(back != nullptr, !rotated || (first.rotation && second.rotation));
            if (!back) return;
            for (const BPoint& at :
                 {BPoint(0, 0, 0), BPoint(200, 0, 0), BPoint(0, 100, 0), BPoint(200, 100, 0)}) {
                const BPoint a = given.MathTransform->ConvertSourceToTarget(at);
                const BPoint b = back->MathTransform->ConvertSourceToTarget(at);
                ASSERT_NEAR(a.x, b.x, 1e-5 * place.pixel);
                ASSERT_NEAR(a.y, b.y, 1e-5 * place.pixel);
            }
            if (*place.epsg) {
                EXPECT_EQ(CodeOf(*back), std::string("EPSG:") + place.epsg);
            }
        });
    }
}

}  // namespace
}  // namespace MapAnchor
