#include <Tellurion/BCoordSys.h>

#include <Tellurion/BLinearUnit.h>
#include <Tellurion/Numbers.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace Tellurion {
namespace {

using Ptr = std::unique_ptr<BCoordSys>;

Ptr FromWkt(const std::string& text) {
    return Ptr(BCoordSys::FromWKT(BString(text)));
}

std::string Replaced(std::string text, const std::string& old, const std::string& by) {
    for (std::size_t at = text.find(old); at != text.npos; at = text.find(old, at + by.size()))
        text.replace(at, old.size(), by);
    return text;
}

std::string AnswersOf(const Ptr& system) {
    if (!system) return "none";
    const Ptr base(system->GetBaseCoordSys());
    const bool is_projected = system->GetKind() == BCoordSys::kKindProjected;
    const BPoint placed =
        system->ConvertToGeodetic({is_projected ? 600000.0 : 6.0, is_projected ? 1000000.0 : 9.0, 0.0});
    std::string answers = system->ToEPSGCode().StdStr() + (system->GetVerticalUnits() ? " heights " : " ");
    for (const BString& text : {system->GetName(), system->GetUnits()->GetName(), system->ToPROJJSON(),
                                system->ToWKT(), system->ToPRJ(), base ? base->GetName() : BString()})
        answers += text.StdStr() + "\n";
    return answers + PrintShortest(placed.x) + " " + PrintShortest(placed.y);
}

/// Such a text is compared with the list's, and read only where that does not answer; in round
/// brackets it is read at once.
TEST(KnownEsriTexts, AnswerAsTheyRead) {
    for (const char* code : {"EPSG:32601", "EPSG:32760", "EPSG:25828", "EPSG:26923", "EPSG:26722",
                             "EPSG:4326", "EPSG:4258", "EPSG:4269", "EPSG:3035", "EPSG:27700", "EPSG:2154",
                             "EPSG:28992", "EPSG:31370", "EPSG:2056", "EPSG:2193"}) {
        const std::string text = Ptr(BCoordSys::FromEPSGCode(code))->ToPRJ().StdStr();
        EXPECT_EQ(FromWkt(text)->ToEPSGCode().StdStr(), code);
        for (const std::string& variant :
             {text, Replaced(text, ".0]", "]"), Replaced(text, ",", ",\n "),
              Replaced(text, "500000", "500001"), Replaced(text, "500000.0", "0x7A120"),
              Replaced(text, ",PARAMETER", ",PARA METER"), Replaced(text, ".0]", "\"]"),
              Replaced(text, "Degree", "degree")})
            EXPECT_EQ(AnswersOf(FromWkt(variant)),
                      AnswersOf(FromWkt(Replaced(Replaced(variant, "[", "("), "]", ")"))))
                << variant;
    }
}

}  // namespace
}  // namespace Tellurion
