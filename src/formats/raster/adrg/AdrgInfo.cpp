#include "raster/adrg/AdrgInfo.h"

#include "lookups/CoordSysLookups.h"

#include <Tellurion/Numbers.h>

namespace MapAnchor {
namespace {

using Tellurion::ParseDouble;
using Tellurion::ParseLong;

constexpr std::string_view kTag = "ADRG";
constexpr std::size_t kImageName = 8;
constexpr std::size_t kCount = 8;
constexpr std::size_t kLongitude = 11;
constexpr std::size_t kLatitude = 10;

/// From the tag to the first of the four values, which follow one another.
std::size_t ValuesBehindTag(AdrgLayout layout) {
    return layout == AdrgLayout::Overview ? 14 : 130;
}

/// Cuts `count` characters off the front of `text`.
std::string_view Take(std::string_view& text, std::size_t count) {
    const std::string_view field = text.substr(0, count);
    text.remove_prefix(field.size());
    return field;
}

/// False when the file ends within the values.
bool ReadValues(std::string_view bytes, std::size_t at, AdrgInfo& info) {
    std::string_view text = at < bytes.size() ? bytes.substr(at) : std::string_view();
    if (text.size() < 2 * kCount + kLongitude + kLatitude) return false;
    info.values_at = at;
    info.columns_per_turn = ParseLong(Take(text, kCount));
    info.rows_per_turn = ParseLong(Take(text, kCount));
    info.longitude = ParseAdrgAngle(Take(text, kLongitude));
    info.latitude = ParseAdrgAngle(Take(text, kLatitude));
    return true;
}

bool NamesImage(std::string_view name, std::string_view image) {
    return name.size() == kImageName && image.size() == kImageName &&
           CompareNoCase(name.data(), image.data(), kImageName) == 0;
}

/// The tag in front of the image's name; npos for none. The first tag of the file
/// belongs to its header.
std::size_t FindRecord(std::string_view text, std::size_t first_tag, std::string_view image) {
    std::size_t at = text.find(kTag, first_tag + kTag.size());
    while (at != std::string_view::npos && !NamesImage(text.substr(at + kTag.size(), kImageName), image))
        at = text.find(kTag, at + kTag.size());
    return at;
}

}  // namespace

double ParseAdrgAngle(std::string_view text) {
    constexpr std::size_t kSeconds = 5;
    constexpr std::size_t kMinutes = 2;
    if (text.size() < 1 + kMinutes + kSeconds) return 0.0;
    const std::size_t minutes_at = text.size() - kSeconds - kMinutes;
    const double seconds = ParseDouble(text.substr(text.size() - kSeconds));
    const double minutes = ParseDouble(text.substr(minutes_at, kMinutes));
    const double degrees = ParseDouble(text.substr(1, minutes_at - 1));
    const double angle = seconds / 3600.0 + minutes / 60.0 + degrees;
    return text.front() == '-' ? angle * -1.0 : angle;
}

AffineTerms AdrgInfo::ToAffine() const {
    const double dx = 360.0 / static_cast<double>(columns_per_turn);
    const double dy = 360.0 / static_cast<double>(rows_per_turn);
    return {dx, 0.0, longitude + dx * 0.5, 0.0, -dy, latitude + (0.0 - dy * 0.5)};
}

AdrgInfo ParseAdrgInfo(std::string_view bytes, AdrgLayout layout, std::string_view image) {
    AdrgInfo info;
    const std::string_view text = bytes.substr(0, bytes.find('\0'));
    std::size_t tag = text.find(kTag);
    if (tag == std::string_view::npos) {
        info.fault = AdrgInfo::Fault::NoTag;
        return info;
    }
    if (layout == AdrgLayout::GeneralInformation) tag = FindRecord(text, tag, image);
    if (tag == std::string_view::npos || !ReadValues(bytes, tag + ValuesBehindTag(layout), info))
        info.fault = AdrgInfo::Fault::NoRecord;
    return info;
}

}  // namespace MapAnchor
