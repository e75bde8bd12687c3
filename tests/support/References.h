#pragma once

#include <Tellurion/BGeoCalcException.h>
#include <Tellurion/BGeoReference.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

/// References as a host makes them.
struct References {
    using BGeoReference = Tellurion::BGeoReference;

    static BGeoReference WithAffine(double a, double b, double c, double d, double e, double f) {
        BGeoReference reference;
        const std::unique_ptr<Tellurion::BMathTransform> transform(
            Tellurion::BMathTransform::CreateAffine(a, b, c, d, e, f, true));
        reference.SetMathTransform(*transform);
        return reference;
    }
    static BGeoReference WithPoints(const std::vector<Tellurion::BPointPair>& pairs) {
        BGeoReference reference;
        reference.SetPointPairVector(pairs, Tellurion::EMathTransformType::None);
        return reference;
    }
    /// In UTM 32, with four control points of its affine, 200 by 100 pixels.
    static BGeoReference WithCorners(double x, double y) {
        BGeoReference reference = WithAffine(0.5, 0, x, 0, -0.5, y);
        std::vector<Tellurion::BPointPair> pairs;
        for (const auto& [column, row] : {std::pair{0L, 0L}, {200L, 0L}, {200L, 100L}, {0L, 100L}})
            pairs.emplace_back(column, row, x + 0.5 * static_cast<double>(column),
                               y - 0.5 * static_cast<double>(row), 0.0, Tellurion::BString(), true);
        reference.SetPointPairVectorAndMathTransform(pairs, *reference.MathTransform);
        SetSystem(reference, "32632");
        return reference;
    }
    static void SetSystem(BGeoReference& reference, const std::string& epsg) {
        reference.SetCoordSys(Tellurion::BSharedPtr<Tellurion::BCoordSys>(
            Tellurion::BCoordSys::FromEPSGCode(Tellurion::BString(epsg))));
    }
    /// A transform that has no value at the third corner of a raster.
    static BGeoReference Breaking(const std::vector<Tellurion::BPointPair>& pairs = {}) {
        class Transform : public Tellurion::BMathTransform {
        public:
            Transform() : BMathTransform(Tellurion::EMathTransformType::None, {}, 0, 0, true) {}
            Tellurion::BPoint ConvertSourceToTarget(const Tellurion::BPoint& point) const override {
                if (point.x > 0 && point.y > 0)
                    throw Tellurion::BGeoCalcException("message", "source", "no value here");
                return point;
            }
            bool ConvertSourceToTarget(double&, double&) const override { return false; }
        };
        BGeoReference reference = WithPoints(pairs);
        reference.MathTransform = Tellurion::BSharedPtr<Tellurion::BMathTransform>(new Transform);
        return reference;
    }
    static BGeoReference Of(const std::string& epsg, const std::array<double, 6>& t) {
        BGeoReference reference = WithAffine(t[0], t[1], t[2], t[3], t[4], t[5]);
        SetSystem(reference, epsg);
        return reference;
    }
    static std::array<double, 6> Terms(const BGeoReference& reference) {
        std::array<double, 6> t{};
        reference.MathTransform->GetAffineParameters(t[0], t[1], t[2], t[3], t[4], t[5]);
        return t;
    }
};
