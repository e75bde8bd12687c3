#include "crs/UnitTable.h"

#include "crs/Names.h"
#include "crs/ProjObjects.h"

#include <cmath>
#include <numbers>

namespace Tellurion {
namespace {

// Sizes of texts are cut after 15 digits and less; the nearest two units of the
// table (the feet of Sears and of its rounded form) are 5e-7 apart.
constexpr double kSizeTolerance = 1e-9;

}  // namespace

/// Rods, yards without a further word, chains and links of the database's own codes
/// are the surveyor's units: sixteen and a half, three, sixty-six US survey feet.
const BUnit::Row UnitTable::kRows[] = {
    {"metre", true, 1, 1, 9001, 0, "METERS|METRES|METER|METRE", "meter|metres|meters|m"},
    {"kilometre", true, 1000, 1, 9036, 0, "KILOMETERS|KILOMETRES", "kilometer|kilometres|kilometers|km"},
    {"centimetre", true, 1, 100, 1033, 0, "CENTIMETERS|CENTIMETRES", "centimeter|centimetres|centimeters|cm"},
    {"millimetre", true, 1, 1000, 1025, 0, "MILLIMETERS|MILLIMETRES",
     "millimeter|millimetres|millimeters|mm"},
    {"foot", true, 3048, 10000, 9002, 0, "INTERNATIONAL FEET|FEET",
     "feet|ft|footinternational|internationalfoot|internationalfeet|footintl"},
    {"US survey foot", true, 1200, 3937, 9003, 0, "USFEET|US SURVEY FEET",
     "footus|ussurveyfeet|usfoot|usfeet|surveyfoot|surveyft|usft|ftus|foot|feet|ft"},
    {"inch", true, 254, 10000, 0, 0, "INCHES|INTERNATIONAL INCHES", "inches|iinch|in|internationalinch"},
    {"US survey inch", true, 100, 3937, 0, 0, "US SURVEY INCHES|USINCHES", "inchus|usinch|inch|inches|in"},
    {"yard", true, 9144, 10000, 9096, 0, "INTERNATIONAL YARDS",
     "yards|yd|iyard|internationalyard|yardinternational"},
    {"US survey yard", true, 3600, 3937, 0, 0, "YARD|YARDS|US SURVEY YARDS|USYARDS",
     "yardus|usyard|yard|yards|yd"},
    {"fathom", true, 18288, 10000, 9014, 0, "FATHOM|FATHOMS", "fathoms|fath"},
    {"US survey rod", true, 19800, 3937, 0, 0, "RODS|ROD|US SURVEY RODS", "rod|rods|rodus|rd|usrod"},
    {"US survey chain", true, 79200, 3937, 9033, 0, "CHAINS|US SURVEY CHAINS|USCHAINS",
     "chainus|uschain|chain|chains|ch"},
    {"US survey link", true, 792, 3937, 9034, 0, "LINKS|US SURVEY LINKS|USLINKS",
     "linkus|uslink|link|links|li"},
    {"US survey mile", true, 6336000, 3937, 9035, 0, "US SURVEY MILES|USMILES", "mileus|usmile|mile|miles"},
    {"Statute mile", true, 1609344, 1000, 9093, 0, "INTERNATIONAL MILES|MILES",
     "mile|miles|mi|internationalmile|mileinternational"},
    {"nautical mile", true, 1852, 1, 9030, 0, "NAUTICAL MILES|NAUTICAL MILE",
     "nauticalmiles|nmi|internationalnauticalmile"},
    {"chain", true, 201168, 10000, 9097, 0, "INTERNATIONAL CHAINS", "chains|ch"},
    {"link", true, 201168, 1000000, 9098, 0, "INTERNATIONAL LINKS", "links|li"},
    {"German legal metre", true, 10000135965, 10000000000, 9031, 0, "GERMAN LEGAL METERS",
     "metergerman|legalmeter|germanlegalmeter"},
    {"Clarke's foot", true, 3047972654, 10000000000, 9005, 0, "CLARKES FEET|CLARKE'S FOOT",
     "footclarke|clarkefoot|foot|feet|ft"},
    {"Clarke's yard", true, 9143917962, 10000000000, 9037, 0, "CLARKES YARDS", "yardclarke|clarkeyard|yard"},
    {"Clarke's chain", true, 201166195164, 10000000000, 9038, 0, "CLARKES CHAINS", "chainclarke|chain"},
    {"Clarke's link", true, 201166195164, 1000000000000, 9039, 0, "CLARKES LINKS", "linkclarke|link"},
    {"British yard (Sears 1922)", true, 36000000, 39370147, 9040, 0, "BRITISH YARDS (SEARS 1922)",
     "yardsears|yard"},
    {"British foot (Sears 1922)", true, 12000000, 39370147, 9041, 0, "BRITISH FEET (SEARS 1922)|BRITISH FEET",
     "footsears|britishfoot|foot|feet|ft"},
    {"British chain (Sears 1922)", true, 792000000, 39370147, 9042, 0, "BRITISH CHAINS (SEARS 1922)",
     "chainsears|chain"},
    {"British link (Sears 1922)", true, 7920000, 39370147, 9043, 0, "BRITISH LINKS (SEARS 1922)",
     "linksears|link"},
    {"British yard (Benoit 1895 A)", true, 9143992, 10000000, 9050, 0, "BRITISH YARDS (BENOIT 1895 A)",
     "yardbenoit1895a|yard"},
    {"British foot (Benoit 1895 A)", true, 9143992, 30000000, 9051, 0, "BRITISH FEET (BENOIT 1895 A)",
     "footbenoit1895a|foot|feet|ft"},
    {"British chain (Benoit 1895 A)", true, 201167824, 10000000, 9052, 0, "BRITISH CHAINS (BENOIT 1895 A)",
     "chainbenoit1895a|chain"},
    {"British link (Benoit 1895 A)", true, 201167824, 1000000000, 9053, 0, "BRITISH LINKS (BENOIT 1895 A)",
     "linkbenoit1895a|link"},
    {"British yard (Benoit 1895 B)", true, 36000000, 39370113, 9060, 0, "BRITISH YARDS (BENOIT 1895 B)",
     "yardbenoit1895b|yard"},
    {"British foot (Benoit 1895 B)", true, 12000000, 39370113, 9061, 0, "BRITISH FEET (BENOIT 1895 B)",
     "footbenoit1895b|foot|feet|ft"},
    {"British chain (Benoit 1895 B)", true, 792000000, 39370113, 9062, 0, "BRITISH CHAINS (BENOIT 1895 B)",
     "chainbenoit1895b|chain"},
    {"British link (Benoit 1895 B)", true, 7920000, 39370113, 9063, 0, "BRITISH LINKS (BENOIT 1895 B)",
     "linkbenoit1895b|link"},
    {"British foot (1865)", true, 9144025, 30000000, 9070, 0, "BRITISH FEET (1865)", "foot1865|foot|feet|ft"},
    {"British foot (1936)", true, 3048007491, 10000000000, 9095, 0, "BRITISH FEET (1936)",
     "footbritish1936|foot|feet|ft"},
    {"British yard (Sears 1922 truncated)", true, 914398, 1000000, 9099, 0,
     "BRITISH YARDS (SEARS 1922 TRUNCATED)", "yardsears1922truncated|yard"},
    {"British foot (Sears 1922 truncated)", true, 914398, 3000000, 9300, 0,
     "BRITISH FEET (SEARS 1922 TRUNCATED)", "footsears1922truncated|foot|feet|ft"},
    {"British chain (Sears 1922 truncated)", true, 20116756, 1000000, 9301, 0,
     "BRITISH CHAINS (SEARS 1922 TRUNCATED)", "chainsears1922truncated|chain"},
    {"British link (Sears 1922 truncated)", true, 20116756, 100000000, 9302, 0,
     "BRITISH LINKS (SEARS 1922 TRUNCATED)", "linksears1922truncated|link"},
    {"Indian foot", true, 12000000, 39370142, 9080, 0, "INDIAN FEET", "footindian|foot|feet|ft"},
    {"Indian foot (1937)", true, 30479841, 100000000, 9081, 0, "INDIAN FEET (1937)",
     "footindian1937|foot|feet|ft"},
    {"Indian foot (1962)", true, 3047996, 10000000, 9082, 0, "INDIAN FEET (1962)",
     "footindian1962|foot|feet|ft"},
    {"Indian foot (1975)", true, 3047995, 10000000, 9083, 0, "INDIAN FEET (1975)",
     "footindian1975|foot|feet|ft"},
    {"Indian yard", true, 36000000, 39370142, 9084, 0, "INDIAN YARDS", "yardindian|yard"},
    {"Indian yard (1937)", true, 91439523, 100000000, 9085, 0, "INDIAN YARDS (1937)", "yardindian1937|yard"},
    {"Indian yard (1962)", true, 9143988, 10000000, 9086, 0, "INDIAN YARDS (1962)", "yardindian1962|yard"},
    {"Indian yard (1975)", true, 9143985, 10000000, 9087, 0, "INDIAN YARDS (1975)", "yardindian1975|yard"},
    {"Gold Coast foot", true, 6378300, 20926201, 9094, 0, "GOLD COAST FEET", "footgoldcoast|foot|feet|ft"},
    {"degree", false, 1, 1, 9122, 9102, "DEGREES|DEGREE|DECIMAL DEGREES",
     "degrees|decimaldegree|decimaldegrees|deg|dd|degreesuppliertodefinerepresentation"},
    {"grad", false, 9, 10, 9105, 9106, "GRADS|GRAD|GRADIANS|GON", "grads|gon|gons|gradian|gradians|grade"},
    {"radian", false, 180, std::numbers::pi, 9101, 0, "RADIANS|RADIAN", "radians|rad"},
    {"arc-minute", false, 1, 60, 9103, 0, "MINUTES|ARC MINUTES", "arcminutes|minute|minutes"},
    {"arc-second", false, 1, 3600, 9104, 0, "SECONDS|ARC SECONDS", "arcseconds|second|seconds"},
    {"microradian", false, 180, std::numbers::pi * 1e6, 9109, 0, "MICRORADIANS", "microradians"},
};

const BUnit::Row* UnitTable::FindRow(const BIdentifier& identifier) {
    const std::string code = identifier.Code.StdStr();
    if (identifier.Issuer == BString("EPSG")) {
        const int number = Proj::ParseCode(code.c_str());
        for (const BUnit::Row& row : kRows)
            if (number != 0 && (row.epsg == number || row.epsg_alternate == number)) return &row;
    }
    if (identifier.Issuer == BString("GC")) {
        const std::string upper = UpperAscii(code);
        for (const BUnit::Row& row : kRows)
            if (ListHas(row.gc, upper)) return &row;
    }
    return nullptr;
}

const BUnit::Row* UnitTable::MatchRow(std::string_view name, double base_per_unit, bool linear, int epsg) {
    const std::string plain = LowerAscii(LettersAndDigits(name));
    const bool says_nothing = plain.empty() || plain == "unknown" || plain == "unnamed";
    for (const BUnit::Row& row : kRows) {
        if (row.linear != linear) continue;
        if (!(std::abs(base_per_unit / row.BasePerUnit() - 1.0) < kSizeTolerance)) continue;
        const bool same_code = epsg != 0 && (epsg == row.epsg || epsg == row.epsg_alternate);
        const bool same_name =
            plain == LowerAscii(LettersAndDigits(row.name)) || ListHas(row.spellings, plain);
        if (same_code || same_name || says_nothing) return &row;
    }
    return nullptr;
}

BSharedPtr<BUnit> UnitTable::Find(const BIdentifier& identifier) {
    const BUnit::Row* row = FindRow(identifier);
    if (!row) return {};
    return BSharedPtr<BUnit>(row->linear ? new BLinearUnit(*row) : new BUnit(*row));
}

BSharedPtr<BLinearUnit> UnitTable::FindLinear(const BIdentifier& identifier) {
    const BUnit::Row* row = FindRow(identifier);
    if (!row || !row->linear) return {};
    return BSharedPtr<BLinearUnit>(new BLinearUnit(*row));
}

BSharedPtr<BUnit> UnitTable::FromText(std::string_view name, double base_per_unit, bool linear, int epsg) {
    if (const BUnit::Row* row = MatchRow(name, base_per_unit, linear, epsg))
        return BSharedPtr<BUnit>(linear ? new BLinearUnit(*row) : new BUnit(*row));
    const BString text{std::string(name)};
    return BSharedPtr<BUnit>(linear ? new BLinearUnit(text, base_per_unit)
                                    : new BUnit(text, base_per_unit, linear));
}

BSharedPtr<BLinearUnit> UnitTable::LinearFromText(std::string_view name, double metres_per_unit, int epsg) {
    if (const BUnit::Row* row = MatchRow(name, metres_per_unit, true, epsg))
        return BSharedPtr<BLinearUnit>(new BLinearUnit(*row));
    return BSharedPtr<BLinearUnit>(new BLinearUnit(BString(std::string(name)), metres_per_unit));
}

}  // namespace Tellurion
