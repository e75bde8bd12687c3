#include <Tellurion/BIdentifier.h>
#include <Tellurion/BKeyValuePairs.h>
#include <Tellurion/BParamList.h>
#include <Tellurion/Numbers.h>

#include <limits>
#include <string>

namespace Tellurion {
namespace {

/// The number that a value begins with.
bool ReadNumber(const std::map<BString, BString>& values, const BString& key, double& number) {
    const auto found = values.find(key);
    if (found == values.end()) return false;
    const std::string text = found->second.StdStr();
    std::string_view view = text;
    return ScanDouble(view, number);
}

}  // namespace

BIdentifier::~BIdentifier() = default;
BKeyValuePairs::~BKeyValuePairs() = default;
BParamList::~BParamList() = default;

bool BKeyValuePairs::HasProperty(const BString& key) const {
    return values_.count(key) != 0;
}

int BKeyValuePairs::GetInteger(const BString& key, int fallback) const {
    double number = 0.0;
    if (!ReadNumber(values_, key, number)) return fallback;
    const bool fits = number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max();
    return fits ? static_cast<int>(number) : fallback;
}

double BKeyValuePairs::GetDouble(const BString& key, double fallback) const {
    double number = 0.0;
    return ReadNumber(values_, key, number) ? number : fallback;
}

BString BKeyValuePairs::GetString(const BString& key, const BString& fallback) const {
    const auto found = values_.find(key);
    return found == values_.end() ? fallback : found->second;
}

void BKeyValuePairs::SetInteger(const BString& key, int value) {
    values_[key] = BString(std::to_string(value));
}
void BKeyValuePairs::SetDouble(const BString& key, double value) {
    values_[key] = BString(PrintShortest(value));
}
void BKeyValuePairs::SetString(const BString& key, const BString& value) {
    values_[key] = value;
}

}  // namespace Tellurion
