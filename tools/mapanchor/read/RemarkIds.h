#pragma once

namespace Tool {

/// The ids of this program's own remarks. Each has a section in docs/diagnostics.md, which a
/// test compares with this list; an id that was released keeps its meaning.
namespace RemarkId {

inline constexpr const char* kCrsMismatch = "crs-mismatch";
inline constexpr const char* kCrsMissing = "crs-missing";
inline constexpr const char* kDistanceExceeded = "distance-exceeded";
inline constexpr const char* kExtentUnknown = "extent-unknown";
inline constexpr const char* kNearLine = "near-line";
inline constexpr const char* kNoFootprint = "no-footprint";
inline constexpr const char* kNoPosition = "no-position";
inline constexpr const char* kNoThumbnail = "no-thumbnail";
inline constexpr const char* kOutside = "outside";
inline constexpr const char* kReadRemark = "read-remark";
inline constexpr const char* kRmseExceeded = "rmse-exceeded";
inline constexpr const char* kRmseUnknown = "rmse-unknown";
inline constexpr const char* kSizeAssumed = "size-assumed";
inline constexpr const char* kSizeDiffers = "size-differs";
inline constexpr const char* kSizeUnknown = "size-unknown";
inline constexpr const char* kSuspects = "suspects";
inline constexpr const char* kTransformMissing = "transform-missing";

}  // namespace RemarkId

}  // namespace Tool
