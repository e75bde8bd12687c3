// The system of an "LGIDict" as it is written by others.

#include "import/LGINumbers.h"
#include "import/OgrSystem.h"
#include "wide/WideLGIDict.h"

#include <Tellurion/Numbers.h>

#include <array>
#include <cmath>

namespace VellumLib {
namespace {

using Tellurion::PrintShortest;

std::string Quoted(const std::string& key) {
    return std::string("\"").append(key).append("\"");
}

/// Parameters that are texts by their nature.
bool IsWord(int number) {
    return number == kProjectionType || number == kType || number == kUnits || number == kDatum ||
           number == kHemisphere;
}

struct Ellipsoid {
    const char* code;
    const char* name;
    double semi_major;
    double inverse_flattening;
};

/// By the codes of the dialect, which are those of military grids.
constexpr Ellipsoid kEllipsoids[] = {
    {"WE", "WGS 84", 6378137.0, 298.257223563},
    {"WD", "WGS 72", 6378135.0, 298.26},
    {"RF", "GRS 1980", 6378137.0, 298.257222101},
    {"CC", "Clarke 1866", 6378206.4, 294.9786982},
    {"CD", "Clarke 1880", 6378249.145, 293.465},
    {"IN", "International 1924", 6378388.0, 297.0},
    {"BR", "Bessel 1841", 6377397.155, 299.1528128},
    {"AA", "Airy 1830", 6377563.396, 299.3249646},
    {"KA", "Krassowsky 1940", 6378245.0, 298.3},
    {"AN", "Australian National Spheroid", 6378160.0, 298.25},
    {"HE", "Helmert 1906", 6378200.0, 298.3},
};

const Ellipsoid* EllipsoidOf(const std::string& code) {
    for (const Ellipsoid& ellipsoid : kEllipsoids)
        if (code == ellipsoid.code) return &ellipsoid;
    return nullptr;
}

double InverseFlattening(double semi_major, const WideValue& ellipsoid) {
    if (const auto value = ellipsoid["InvFlattening"].Number()) return *value;
    const auto semi_minor = ellipsoid["SemiMinorAxis"].Number();
    if (!semi_minor || *semi_minor == semi_major) return 0.0;
    return semi_major / (semi_major - *semi_minor);
}

bool IsEarth(const WideDatum& datum) {
    constexpr double kSmallest = 1e3;
    constexpr double kLargest = 1e9;
    return datum.semi_major > kSmallest && datum.semi_major < kLargest &&
           (datum.inverse_flattening == 0.0 || datum.inverse_flattening > 1.0);
}

std::vector<double> ShiftOf(const WideValue& shift) {
    std::vector<double> terms;
    for (const char* key : {"dx", "dy", "dz"})
        terms.push_back(shift[key].Number().value_or(0.0));
    if (shift["rx"] && shift["ry"] && shift["rz"] && shift["sf"])
        for (const char* key : {"rx", "ry", "rz", "sf"})
            terms.push_back(shift[key].Number().value_or(0.0));
    return terms;
}

}  // namespace

void WideLGIDict::ReadProjection() {
    const WideValue projection = entry_["Projection"];
    if (!projection.IsDictionary()) {
        map_.fault = "The \"LGIDict\" has no \"Projection\".";
        return;
    }
    if (projection.WasReference())
        map_.remarks.Beyond(
            "projection-in-place",
            "\"Projection\" is expected to be a dictionary in place; here it is a reference.");
    // What is read here may mean another system than by the rules; the key keeps them apart.
    Parameters[kLGIParameterCount] = std::string("beyond the rules");
    for (const auto& [number, key] : ParameterKeys)
        if (number != kDatum) ReadParameter(projection, number, key);
    if (Parameters[kLatitudeOfTrueScale].empty())
        ReadParameter(projection, kLatitudeOfTrueScale, "LatitudeTrueScale");
    ReadDatum(projection);
    ReadScale();
    own_text_ = projection["WKT"].Text().value_or("");
    budget_.TakeText(own_text_.size());
}

void WideLGIDict::ReadParameter(const WideValue& projection, int number, const std::string& key) {
    const WideValue value = projection[key.c_str()];
    if (!value) return;
    const std::string text = value.Text().value_or("");
    budget_.TakeText(text.size());
    const bool parsed = !IsWord(number) && value.Number();
    const double parameter = parsed ? value.Number().value_or(0.0) : 0.0;
    Parameters[number] = parsed ? PrintShortest(parameter) : text;
    if (number == kZone && parsed)
        Parameters[number] = std::to_string(static_cast<long>(std::fmod(parameter, 1e6)));
    if (number == kZone ? value.IsString() : value.IsNumber())
        map_.remarks.Beyond(number == kZone ? "zone-whole" : "number-as-string",
                            Quoted(key) + " of the projection is expected to be " +
                                (number == kZone ? "a whole number; here it is a string."
                                                 : "a string; here it is a plain number."));
    if (!IsWord(number) && !parsed && !text.empty())
        map_.remarks.Doubt("pdf-not-a-number", Quoted(key).append(" of the projection is \"").append(text) +
                                                   "\", which is not a number.");
}

void WideLGIDict::ReadDatum(const WideValue& projection) {
    const WideValue datum = projection["Datum"];
    if (datum.IsDictionary()) return ReadDatumDictionary(datum);
    const std::string text = datum.Text().value_or("");
    budget_.TakeText(text.size());
    Parameters[kDatum] = text;
    if (!datum)
        return map_.remarks.Doubt("pdf-unknown-datum", "The projection has no \"Datum\"; WGS 84 is assumed.");
    if (Datums.find(text.substr(0, text.find('-'))) == Datums.end())
        map_.remarks.Doubt("pdf-unknown-datum",
                           std::string("The datum \"").append(text) + "\" is not known; WGS 84 is assumed.");
}

void WideLGIDict::ReadDatumDictionary(const WideValue& value) {
    map_.remarks.Beyond("datum-code", "\"Datum\" is expected to be a code; here it is a dictionary.");
    WideDatum datum;
    datum.name = value["Description"].Text().value_or("unknown");
    const WideValue ellipsoid = value["Ellipsoid"];
    if (ellipsoid.IsDictionary()) {
        datum.ellipsoid = ellipsoid["Description"].Text().value_or("unknown");
        datum.semi_major = ellipsoid["SemiMajorAxis"].Number().value_or(0.0);
        datum.inverse_flattening = InverseFlattening(datum.semi_major, ellipsoid);
    } else if (const Ellipsoid* known = EllipsoidOf(ellipsoid.Text().value_or(""))) {
        datum.ellipsoid = known->name;
        datum.semi_major = known->semi_major;
        datum.inverse_flattening = known->inverse_flattening;
    }
    budget_.TakeText(datum.name.size() + datum.ellipsoid.size());
    if (!IsEarth(datum))
        return map_.remarks.Doubt("pdf-unknown-datum",
                                  std::string("The datum \"").append(datum.name) +
                                      "\" has no ellipsoid that is known; WGS 84 is assumed.");
    if (const WideValue shift = value["ToWGS84"]; shift.IsDictionary()) datum.shift = ShiftOf(shift);
    std::string key("{");
    key.append(datum.name).append("}{").append(datum.ellipsoid).append("}");
    key.append(PrintShortest(datum.semi_major)).append(" ").append(PrintShortest(datum.inverse_flattening));
    for (const double term : datum.shift)
        key.append(" ").append(PrintShortest(term));
    // Unlike any code, and what the text of the system is kept by.
    Parameters[kDatum] = key;
    datum_ = datum;
}

/// A scale of 0 would put every position on the origin.
void WideLGIDict::ReadScale() {
    const std::string& type = Parameters[kProjectionType];
    const bool has_scale = type == "TC" || type == "MC" || type == "SD" || type == "OC";
    if (!has_scale || ParameterNumber(kScaleFactor) != 0.0) return;
    map_.remarks.Doubt("pdf-scale", Parameters[kScaleFactor].empty()
                                        ? "The projection has no \"ScaleFactor\"; 1 is assumed."
                                        : "The \"ScaleFactor\" of the projection is 0; 1 is assumed.");
    Parameters[kScaleFactor] = std::string("1");
}

double WideLGIDict::ParameterNumber(LGIParameter number) const {
    const auto found = Parameters.find(number);
    return found == Parameters.end() ? 0.0 : LGIReal(found->second);
}

void WideLGIDict::AmendPolar(OGRSpatialReference& srs) {
    OSRSetPS(HandleOf(srs), ParameterNumber(kLatitudeOfTrueScale), ParameterNumber(kLongitudeDownFromPole),
             1.0, ParameterNumber(kFalseEasting), ParameterNumber(kFalseNorthing));
}

/// Projections that the tables lack or read otherwise, and a datum of the file's own.
void WideLGIDict::AmendSystem(OGRSpatialReference& srs) {
    constexpr double kPolarScale = 0.994;
    constexpr double kPolarOrigin = 2e6;
    const std::string& type = Parameters[kProjectionType];
    if (type == "UP")
        OSRSetPS(HandleOf(srs), Parameters[kHemisphere] == "S" ? -90 : 90, 0, kPolarScale, kPolarOrigin,
                 kPolarOrigin);
    if (type == "OC")
        OSRSetHOM2PNO(HandleOf(srs), ParameterNumber(kOriginLatitude), ParameterNumber(kLatitudeOne),
                      ParameterNumber(kLongitudeOne), ParameterNumber(kLatitudeTwo),
                      ParameterNumber(kLongitudeTwo), ParameterNumber(kScaleFactor),
                      ParameterNumber(kFalseEasting), ParameterNumber(kFalseNorthing));
    if (type == "PG") AmendPolar(srs);
    if (type == "SD") OSRSetNormProjParm(HandleOf(srs), "scale_factor", ParameterNumber(kScaleFactor));
    if (type == "SPCS" && Parameters[kDatum].compare(0, 3, "NAS") == 0) {
        constexpr int kNad27 = 0;
        const int zone = LGIInteger(Parameters[kZone]);
        // A zone that does not exist would leave nothing of the system; so it is tried aside.
        if (OSRSetStatePlane(HandleOf(*MakeOgrSystem()), zone, kNad27) == OGRERR_NONE) {
            OSRSetStatePlane(HandleOf(srs), zone, kNad27);
            // Its zones count in feet; the matrix, and so the system, in metres unless the file says feet.
            if (Parameters[kUnits] == "FT")
                OSRSetLinearUnitsAndUpdateParameters(HandleOf(srs), "Foot (International)", 0.3048);
            if (Parameters[kUnits] != "FT" && Parameters[kUnits] != "USSF")
                OSRSetLinearUnitsAndUpdateParameters(HandleOf(srs), "Meter", 1.0);
        }
    }
    if (!datum_) return;
    OSRSetGeogCS(HandleOf(srs), "unknown", datum_->name.c_str(), datum_->ellipsoid.c_str(),
                 datum_->semi_major, datum_->inverse_flattening, nullptr, 0.0, nullptr, 0.0);
    std::array<double, 7> shift{};
    if (datum_->shift.empty()) return;
    std::copy(datum_->shift.begin(), datum_->shift.end(), shift.begin());
    OSRSetTOWGS84(HandleOf(srs), shift[0], shift[1], shift[2], shift[3], shift[4], shift[5], shift[6]);
}

}  // namespace VellumLib
