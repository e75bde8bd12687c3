#pragma once

#include <Tellurion/BString.h>
#include <Tellurion/Export.h>

#include <map>

namespace Tellurion {

/// Named values, kept as text. Keys are compared exactly.
class TELLURION_EXPORT BKeyValuePairs {
public:
    BKeyValuePairs() = default;
    BKeyValuePairs(const BKeyValuePairs&) = default;
    BKeyValuePairs& operator=(const BKeyValuePairs&) = default;
    virtual ~BKeyValuePairs();

    bool HasProperty(const BString& key) const;  ///< also of an empty value
    /// The whole number that the value begins with; `fallback` when the key is
    /// missing, its value is no number, or the number does not fit.
    int GetInteger(const BString& key, int fallback) const;
    double GetDouble(const BString& key, double fallback) const;           ///< the same for a number
    BString GetString(const BString& key, const BString& fallback) const;  ///< the value unchanged

    void SetInteger(const BString& key, int value);            ///< replaces
    void SetDouble(const BString& key, double value);          ///< replaces; keeps every digit
    void SetString(const BString& key, const BString& value);  ///< replaces

private:
    std::map<BString, BString> values_;
};

}  // namespace Tellurion
