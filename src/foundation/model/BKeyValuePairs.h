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

    bool HasProperty(const BString& key) const;
    /// The whole number that the value begins with; `fallback` when the key is
    /// missing, its value is no number, or the number does not fit.
    int GetInteger(const BString& key, int fallback) const;
    double GetDouble(const BString& key, double fallback) const;
    BString GetString(const BString& key, const BString& fallback) const;

    void SetInteger(const BString& key, int value);
    void SetDouble(const BString& key, double value);
    void SetString(const BString& key, const BString& value);

private:
    std::map<BString, BString> values_;
};

}  // namespace Tellurion
