#pragma once

namespace MapAnchor::DiagnosticId {

// The ids of all diagnostics of readings. Each has a section in docs/diagnostics.md; an id
// that was released keeps its meaning.
inline constexpr const char* kOtherMaps = "other-maps";
inline constexpr const char* kPageRotated = "page-rotated";
inline constexpr const char* kPdfRefused = "pdf-refused";
inline constexpr const char* kPrjUnreadable = "prj-unreadable";
inline constexpr const char* kReadByType = "read-by-type";
inline constexpr const char* kReadRemark = "read-remark";
inline constexpr const char* kSidecarBeside = "sidecar-beside";

}  // namespace MapAnchor::DiagnosticId
