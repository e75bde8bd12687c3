#include "read/Systems.h"

#include <Tellurion/BException.h>

namespace Tool {

using Tellurion::BCoordSys;
using Tellurion::BString;

SystemAnswer SystemFromText(const std::string& text) {
    SystemAnswer answer;
    BString understood_as;
    answer.system.reset(BCoordSys::FromText(BString(text), &understood_as));
    answer.understood_as = understood_as.StdStr();
    return answer;
}

std::unique_ptr<BCoordSys> KnownSystem(const std::string& text, std::string& failure) {
    failure = "unknown coordinate system: " + text;
    try {
        return SystemFromText(text).system;
    } catch (const Tellurion::BException& error) {
        failure += ": " + error.GetDetailedMessage().StdStr();
        return nullptr;
    }
}

bool IsSameSystem(const BCoordSys& a, const BCoordSys& b) {
    if (a.IsSame(b)) return true;
    // A system without heights is also that of the horizontal part of one with heights.
    const std::unique_ptr<BCoordSys> vertical_a(a.GetVerticalCoordSys());
    const std::unique_ptr<BCoordSys> vertical_b(b.GetVerticalCoordSys());
    if (!vertical_a == !vertical_b) return false;
    const BCoordSys& compound = vertical_a ? a : b;
    const std::unique_ptr<BCoordSys> horizontal(compound.GetBaseCoordSys());
    return horizontal && horizontal->IsSame(vertical_a ? b : a);
}

std::string TitleOf(const BCoordSys& system) {
    const std::string name = system.GetName().StdStr();
    // MapInfo clauses and PROJ strings have no names; OGR and PROJ put these words in their place.
    if (!name.empty() && name != "unnamed" && name != "unknown") return name;
    const std::unique_ptr<BCoordSys> known(BCoordSys::FromEPSGCode(system.ToEPSGCode()));
    return known ? known->GetName().StdStr() : "without a name";
}

std::string NameOf(const BCoordSys& system) {
    const std::string code = system.ToEPSGCode().StdStr();
    return TitleOf(system) + (code.empty() ? "" : " (" + code + ")");
}

}  // namespace Tool
