#pragma once

#include <MapAnchor/BMapAnchor.h>

#include <gtest/gtest.h>

#include "GdalFiles.h"
#include "LogCapture.h"
#include "OddDriver.h"
#include "TempFolder.h"
#include "Thrown.h"

#include <array>
#include <memory>
#include <string>

namespace MapAnchor {

constexpr unsigned int kStrict = BMapAnchor::kStrictTransform | BMapAnchor::kStrictCoordSys;

inline Thrown ReadByName(const std::string& file, Tellurion::BGeoReference& reference) {
    Tellurion::BString used;
    return WhatIsThrown([&] {
        BMapAnchor::Read(Tellurion::BString(file), reference, used, 20, 10,
                         Tellurion::EMathTransformType::Affine, nullptr);
    });
}

inline Thrown ReadByType(const std::string& file, Tellurion::BGeoReference& reference,
                         unsigned int flags = 0) {
    return WhatIsThrown([&] {
        BMapAnchor::Read(Tellurion::EReferenceType::GeoTIFF, Tellurion::BString(file), reference, 20, 10,
                         Tellurion::EMathTransformType::Affine, flags, nullptr);
    });
}

inline Thrown SaveByName(const std::string& file, const Tellurion::BGeoReference& reference) {
    return WhatIsThrown([&] {
        BMapAnchor::Save(Tellurion::BString(file), reference, 20, 10, Tellurion::BString(), nullptr);
    });
}

inline Thrown SaveByType(const std::string& file, const Tellurion::BGeoReference& reference,
                         unsigned int flags = 0) {
    return WhatIsThrown([&] {
        BMapAnchor::Save(Tellurion::EReferenceType::GeoTIFF, Tellurion::BString(file), reference, 20, 10,
                         Tellurion::BString(), flags, nullptr);
    });
}

inline std::array<double, 6> TermsOf(const Tellurion::BGeoReference& reference) {
    std::array<double, 6> t{};
    reference.MathTransform->GetAffineParameters(t[0], t[1], t[2], t[3], t[4], t[5]);
    return t;
}

inline Tellurion::BGeoReference WithTerms(const std::array<double, 6>& t) {
    using Tellurion::BMathTransform;
    Tellurion::BGeoReference reference;
    const std::unique_ptr<BMathTransform> transform(
        BMathTransform::CreateAffine(t[0], t[1], t[2], t[3], t[4], t[5], true));
    reference.SetMathTransform(*transform);
    return reference;
}

inline void SetEpsg(Tellurion::BGeoReference& reference, const std::string& code) {
    using Tellurion::BCoordSys;
    reference.SetCoordSys(
        Tellurion::BSharedPtr<BCoordSys>(BCoordSys::FromEPSGCode(Tellurion::BString(code))));
}

/// Whatever a test does, no dataset stays open behind it.
class GeoTiff : public testing::Test {
protected:
    GeoTiff() { RegisterOddDriver(); }
    ~GeoTiff() override { EXPECT_EQ(GdalFiles::CountOpen(), 0); }

    const TempFolder folder;
    LogCapture log;
};

}  // namespace MapAnchor
