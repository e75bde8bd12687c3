// Saves a reference by type and says what the caller is told: on stdout the failure's
// type, source and detail, or "saved"; then the lines of the log.

#include "References.h"
#include "Thrown.h"

#include <MapAnchor/BMapAnchor.h>
#include <Tellurion/BLogger.h>

#include <cstdlib>
#include <exception>
#include <iostream>
#include <sstream>

extern "C" [[gnu::weak]] void FaultShimArm(bool);

namespace {

using namespace Tellurion;
using MapAnchor::BMapAnchor;

/// With four control points of its affine, 200 by 100 pixels.
BGeoReference MakeReference() {
    BGeoReference reference = References::WithAffine(0.5, 0, 676000, 0, -0.5, 5242000);
    std::vector<BPointPair> pairs;
    for (const auto& [column, row] : {std::pair{0L, 0L}, {200L, 0L}, {200L, 100L}, {0L, 100L}})
        pairs.emplace_back(column, row, 676000 + 0.5 * static_cast<double>(column),
                           5242000 - 0.5 * static_cast<double>(row), 0.0, BString(), true);
    reference.SetPointPairVectorAndMathTransform(pairs, *reference.MathTransform);
    References::SetSystem(reference, "32632");
    return reference;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) return 64;
    std::ostringstream log;
    BLogger::Instance()->SetSink(
        [&log](ELogSeverity, const BString& text) { log << "log: " << text.StdStr() << "\n"; });
    std::string told = "saved";
    try {
        const BGeoReference reference = MakeReference();
        if (FaultShimArm) FaultShimArm(true);
        const Thrown thrown = WhatIsThrown([&] {
            BMapAnchor::Save(static_cast<EReferenceType>(std::atoi(argv[1])), BString(argv[2]), reference,
                             200, 100, "image.tif",
                             BMapAnchor::kStrictTransform | BMapAnchor::kStrictCoordSys, nullptr);
        });
        if (FaultShimArm) FaultShimArm(false);
        if (!thrown.type.empty()) told = thrown.type + " | " + thrown.source + " | " + thrown.detail;
    } catch (const std::exception& error) {
        told = std::string("std::exception | | ") + error.what();
    } catch (...) {
        told = "unknown";
    }
    std::cout << told << "\n" << log.str();
    BLogger::Instance()->SetSink({});
    return told == "saved" ? 0 : 2;
}
