#pragma once

#include "GdalFiles.h"
#include "OddDriver.h"
#include "Outcomes.h"

namespace MapAnchor {

constexpr auto kTiff = Tellurion::EReferenceType::GeoTIFF;
/// The labels of bands, and the codes of the units.
constexpr std::pair<const char*, const char*> kUnits[] = {
    {"m", "METERS"}, {"ft", "INTERNATIONAL FEET"}, {"sft", "USFEET"}, {"yd", "INTERNATIONAL YARDS"},
    {"syd", "YARD"}, {"fath", "FATHOM"},           {"rd", "RODS"},    {"", "KILOMETERS"}};
constexpr bool kBothRoads[] = {true, false};  ///< by name, by type

inline Thrown Read(bool by_name, const std::string& file, Tellurion::BGeoReference& reference) {
    return by_name ? Roads::Read(file, reference) : Roads::Read(kTiff, file, reference, Roads::kStrict);
}

inline Thrown Save(bool by_name, const std::string& file, const Tellurion::BGeoReference& reference) {
    return by_name ? Roads::Save(file, reference) : Roads::Save(kTiff, file, reference, Roads::kStrict);
}

/// Whatever a test does, no dataset stays open behind it.
class GeoTiff : public testing::Test {
protected:
    GeoTiff() { RegisterOddDriver(); }
    ~GeoTiff() override { EXPECT_EQ(GdalFiles::CountOpen(), 0); }

    const TempFolder folder;
    LogCapture log;
    const Tellurion::BGeoReference plain = References::WithAffine(1, 0, 0, 0, -1, 0);
};

}  // namespace MapAnchor
