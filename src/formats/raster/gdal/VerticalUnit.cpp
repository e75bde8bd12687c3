#include "raster/gdal/VerticalUnit.h"

#include <Tellurion/BIdentifier.h>

#include <gdal_priv.h>

#include <string_view>

namespace MapAnchor {

using Tellurion::BGeoReference;
using Tellurion::BIdentifier;
using Tellurion::BLinearUnit;
using Tellurion::BSharedPtr;
using Tellurion::BString;

namespace {

constexpr const char* kIssuer = "GC";

/// A band's label and the code that it stands for. Labels are compared to the letter.
struct LabelledUnit {
    std::string_view label;
    const char* code;
};

constexpr LabelledUnit kUnits[] = {
    {"m", "METERS"}, {"ft", "INTERNATIONAL FEET"}, {"sft", "USFEET"}, {"yd", "INTERNATIONAL YARDS"},
    {"syd", "YARD"}, {"fath", "FATHOM"},           {"rd", "RODS"},
};

const LabelledUnit* FindLabel(std::string_view label) {
    for (const LabelledUnit& unit : kUnits)
        if (unit.label == label) return &unit;
    return nullptr;
}

const LabelledUnit* FindCode(const BString& code) {
    for (const LabelledUnit& unit : kUnits)
        if (BString(unit.code) == code) return &unit;
    return nullptr;
}

/// The band that may hold heights: a raster of several holds something else.
GDALRasterBand* OnlyBand(GDALDataset& raster) {
    return raster.GetRasterCount() == 1 ? raster.GetRasterBand(1) : nullptr;
}

}  // namespace

BSharedPtr<BLinearUnit> ReadVerticalUnit(GDALDataset& raster) {
    GDALRasterBand* band = OnlyBand(raster);
    if (!band) return {};
    const GDALColorInterp interpretation = band->GetColorInterpretation();
    if (interpretation != GCI_Undefined && interpretation != GCI_GrayIndex) return {};
    const char* label = band->GetUnitType();
    const LabelledUnit* unit = label ? FindLabel(label) : nullptr;
    if (!unit) return {};
    return BLinearUnit::GetLinearUnit(BIdentifier(kIssuer, unit->code));
}

bool WriteVerticalUnit(GDALDataset& raster, const BGeoReference& reference) {
    BIdentifier identifier;
    if (!reference.HasVerticalUnit() || !reference.GetVerticalUnit()->GetIdentifier(kIssuer, identifier))
        return false;
    GDALRasterBand* band = OnlyBand(raster);
    if (!band || band->GetColorInterpretation() != GCI_Undefined) return false;
    const LabelledUnit* unit = FindCode(identifier.Code);
    return unit && band->SetUnitType(unit->label.data()) == CE_None;
}

}  // namespace MapAnchor
