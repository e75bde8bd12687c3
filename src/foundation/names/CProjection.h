#pragma once

#include "CParameterCollection.h"

#include <Tellurion/Export.h>

#include <string>

namespace GeoCalc::PJ {

/// A map projection: its method and parameters, without datum. A value type.
class TELLURION_EXPORT CProjection {
public:
    CProjection() = default;
    /// A method by its name and EPSG code, empty without one.
    CProjection(const std::string& method, const std::string& epsg);

    /// A number that methods share whose formulas are the same: the EPSG code where
    /// there is one.
    int GetKind() const { return kind_; }
    const std::string& GetMethod() const { return method_; }
    const std::string& GetMethodEpsg() const { return epsg_; }

    /// The same kind and, within what texts round their numbers to, the same
    /// parameters: 0.005 seconds, 2 mm, a scale of 1e-8. Lengths must be in the
    /// same unit too: a header that names a projection names its unit with it.
    bool IsNearlyEqual(const CProjection& other) const;
    /// The same within 1e-8 degrees and 0.01 mm.
    bool IsEqual(const CProjection& other) const;

    CParameterCollection& GetParameters() { return parameters_; }
    const CParameterCollection& GetParameters() const { return parameters_; }

private:
    struct Tolerance {
        double degrees;
        double metres;
        double scale;
    };
    bool Matches(const CProjection& other, const Tolerance& tolerance) const;
    bool HasNumbersOf(const CProjection& other, const Tolerance& tolerance) const;
    bool HasNumber(const CParameter& wanted, const Tolerance& tolerance) const;

    std::string method_;
    std::string epsg_;
    int kind_ = 0;
    CParameterCollection parameters_;
};

}  // namespace GeoCalc::PJ
