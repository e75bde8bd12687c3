#include "geocalc/CProjectedPoint.h"

#include <Tellurion/BIdentifier.h>

namespace GeoCalc::ML {

using Tellurion::BLinearUnit;
using Tellurion::BString;

namespace {

struct Row {
    const char* code;
    CProjectedPoint::Kind kind;
    const char* unit;
};

constexpr Row kRows[] = {
    {"PROJECTED_POINT_METERS", CProjectedPoint::kPlain, "METERS"},
    {"PROJECTED_POINT_USFEET", CProjectedPoint::kPlain, "USFEET"},
    {"4400", CProjectedPoint::kEpsg, "METERS"},
    {"4497", CProjectedPoint::kEpsg, "USFEET"},
};

}  // namespace

CProjectedPoint::~CProjectedPoint() = default;

std::unique_ptr<CProjectedPoint> CProjectedPoint::Find(const BString& code) {
    for (const Row& row : kRows)
        if (code == BString(row.code)) {
            const CLinearValue east(0.0, BLinearUnit::GetLinearUnit({kValGc, row.unit}));
            auto point = std::make_unique<CProjectedPoint>(row.kind, east);
            point->SetName(code);
            point->GetIdentifiers().Add(kValGc, code);
            if (row.kind == kEpsg) point->GetIdentifiers().Add("EPSG", code);
            return point;
        }
    return nullptr;
}

}  // namespace GeoCalc::ML
