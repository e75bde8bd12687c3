#pragma once

#include "CLinearValue.h"

#include <Tellurion/BString.h>
#include <Tellurion/Export.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace GeoCalc {

/// Keys of a projection's false origin.
inline constexpr char kValFalseEasting[] = "FALSE_EASTING";
inline constexpr char kValFalseNorthing[] = "FALSE_NORTHING";

/// One parameter of a projection.
struct CParameter {
    enum class Quantity { Angle, Length, Scale };

    std::string key;   ///< "FALSE_EASTING", "CENTRAL_MERIDIAN" ... or the name in capitals
    std::string name;  ///< as the projection's definition spells it
    std::string epsg;  ///< its EPSG code, empty without one
    Quantity quantity = Quantity::Scale;
    double value = 0.0;       ///< of an angle in degrees; of a scale
    ML::CLinearValue length;  ///< of a length
};

/// The parameters of a projection by key.
class TELLURION_EXPORT CParameterCollection {
public:
    std::size_t Count() const { return parameters_.size(); }
    bool Exists(const Tellurion::BString& key) const;
    /// 0 metres for a key that is not there or no length.
    ML::CLinearValue GetLinearValue(const Tellurion::BString& key) const;
    /// Nothing happens for a key that is not there or no length.
    void SetLinearValue(const Tellurion::BString& key, const ML::CLinearValue& value);

    void Add(CParameter parameter) { parameters_.push_back(std::move(parameter)); }
    const std::vector<CParameter>& All() const { return parameters_; }
    /// The number of a parameter: degrees, metres or a scale; `missing` without it.
    double GetNumber(std::string_view key, double missing) const;
    /// Tells all lengths in `unit`.
    void SetUnits(const Tellurion::BSharedPtr<Tellurion::BLinearUnit>& unit);
    /// How often a value was set.
    int Changes() const { return changes_; }

    /// Null for a key that is not there.
    const CParameter* Find(std::string_view key) const;

private:
    std::vector<CParameter> parameters_;
    int changes_ = 0;
};

}  // namespace GeoCalc
