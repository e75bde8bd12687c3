#include "wide/WideValue.h"

#include <Tellurion/BString.h>

#include <cmath>
#include <locale>
#include <sstream>

namespace VellumLib {
namespace {

using PoDoFo::PdfObject;
using Tellurion::BString;

/// References to references are no more than a curiosity.
constexpr int kMaxHops = 8;
constexpr std::size_t kMaxNumberText = 256;

/// "40", "40 30 12.5N": degrees with minutes and seconds behind them, and a side.
std::optional<double> NumberIn(const std::string& text) {
    if (text.size() > kMaxNumberText) return std::nullopt;
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());
    double value = 0.0;
    if (!(stream >> value) || !std::isfinite(value)) return std::nullopt;
    const char side = text.back();
    if (side != 'N' && side != 'S' && side != 'E' && side != 'W') return value;
    double minutes = 0.0;
    double seconds = 0.0;
    if (stream >> minutes) stream >> seconds;
    constexpr double kParts = 60.0;
    value += minutes / kParts + seconds / (kParts * kParts);
    if (!std::isfinite(value)) return std::nullopt;
    return side == 'S' || side == 'W' ? -value : value;
}

std::string FromUtf16(const std::string& bytes, std::size_t high) {
    std::u16string units;
    for (std::size_t i = 2; i + 1 < bytes.size(); i += 2) {
        const auto first = static_cast<unsigned char>(bytes[i + high]);
        const auto second = static_cast<unsigned char>(bytes[i + 1 - high]);
        units.push_back(static_cast<char16_t>(first << 8 | second));
    }
    while (!units.empty() && units.back() == 0)
        units.pop_back();
    return BString(units).StdStr();
}

/// UTF-16 of either order and UTF-8 where a mark says so, else the bytes.
std::string Decoded(const std::string& bytes) {
    if (bytes.compare(0, 2, "\xFE\xFF") == 0) return FromUtf16(bytes, 0);
    if (bytes.compare(0, 2, "\xFF\xFE") == 0) return FromUtf16(bytes, 1);
    if (bytes.compare(0, 3, "\xEF\xBB\xBF") == 0) return bytes.substr(3);
    return bytes.substr(0, bytes.find('\0'));
}

/// The bytes in the file: PoDoFo itself swaps the units of a Unicode string only when asked
/// for another form of it.
std::string BytesOf(const PoDoFo::PdfString& text) {
    if (!text.IsValid() || !text.GetString()) return {};
    const std::string bytes(text.GetString(), static_cast<std::size_t>(text.GetLength()));
    return text.IsUnicode() ? "\xFE\xFF" + bytes : bytes;
}

}  // namespace

WideValue::WideValue(PoDoFo::PdfVecObjects& objects, PdfObject* object)
    : objects_(&objects), object_(object), was_reference_(object && object->IsReference()) {
    for (int hops = 0; object_ && object_->IsReference(); ++hops)
        object_ = hops < kMaxHops ? objects.GetObject(object_->GetReference()) : nullptr;
    if (object_ && object_->IsNull()) object_ = nullptr;
}

WideValue WideValue::operator[](const char* key) const {
    if (!IsDictionary()) return {};
    return {*objects_, object_->GetDictionary().GetKey(PoDoFo::PdfName(key))};
}

WideValue WideValue::At(std::size_t index) const {
    if (index >= Size()) return {};
    return {*objects_, &object_->GetArray()[index]};
}

std::size_t WideValue::Size() const {
    return IsArray() ? object_->GetArray().size() : 0;
}

std::optional<double> WideValue::Number() const {
    if (IsNumber()) {
        const double value = object_->GetReal();
        return std::isfinite(value) ? std::optional(value) : std::nullopt;
    }
    if (!IsString()) return std::nullopt;
    const std::string text = *Text();
    return text.empty() ? std::nullopt : NumberIn(text);
}

std::optional<std::string> WideValue::Text() const {
    if (IsName()) return object_->GetName().GetName();
    if (!IsString()) return std::nullopt;
    return Decoded(BytesOf(object_->GetString()));
}

std::vector<double> NumbersOf(const WideValue& array, ReadingBudget& budget, bool* all_numbers) {
    std::vector<double> numbers;
    budget.Take(static_cast<int>(array.Size()));
    numbers.reserve(array.Size());
    for (std::size_t i = 0; i < array.Size(); ++i) {
        const WideValue element = array.At(i);
        if (element.IsString()) budget.Take(8);
        const std::optional<double> number = element.Number();
        if (!number && all_numbers) *all_numbers = false;
        numbers.push_back(number.value_or(0.0));
    }
    return numbers;
}

std::string PlaceOf(std::initializer_list<WideValue> values, const std::string& path) {
    for (const WideValue& value : values)
        if (const std::uint32_t number = value.ObjectNumber())
            return "object " + std::to_string(number) + ", " + path;
    return path;
}

bool HoldsStrings(const WideValue& array) {
    for (std::size_t i = 0; i < array.Size(); ++i)
        if (array.At(i).IsString()) return true;
    return false;
}

}  // namespace VellumLib
