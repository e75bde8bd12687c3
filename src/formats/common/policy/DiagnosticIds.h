#pragma once

namespace MapAnchor::DiagnosticId {

// The ids of all diagnostics of readings and saves. Each has a section in docs/diagnostics.md, which a
// test compares with this list; an id that was released keeps its meaning.
inline constexpr const char* kCrossesAntimeridian = "crosses-antimeridian";
inline constexpr const char* kDegreesOutOfRange = "degrees-out-of-range";
inline constexpr const char* kFileEmpty = "file-empty";
inline constexpr const char* kFrameCornersDiffer = "frame-corners-differ";
inline constexpr const char* kGdalDriverNotAllowed = "gdal-driver-not-allowed";
inline constexpr const char* kGuessedWorldFile = "guessed-world-file";
inline constexpr const char* kModuleMissing = "module-missing";
inline constexpr const char* kOtherMaps = "other-maps";
inline constexpr const char* kPageRotated = "page-rotated";
inline constexpr const char* kPdfBeyondRules = "pdf-beyond-rules";
inline constexpr const char* kPdfNoSystem = "pdf-no-system";
inline constexpr const char* kPdfNotANumber = "pdf-not-a-number";
inline constexpr const char* kPdfOtherPages = "pdf-other-pages";
inline constexpr const char* kPdfPointsRounded = "pdf-points-rounded";
inline constexpr const char* kPdfScale = "pdf-scale";
inline constexpr const char* kPdfUnits = "pdf-units";
inline constexpr const char* kPdfUnknownDatum = "pdf-unknown-datum";
inline constexpr const char* kPdfRefused = "pdf-refused";
inline constexpr const char* kPdfAntimeridian = "pdf-antimeridian";
inline constexpr const char* kPdfAppended = "pdf-appended";
inline constexpr const char* kPdfArchive = "pdf-archive";
inline constexpr const char* kPdfLinearized = "pdf-linearized";
inline constexpr const char* kPdfLocked = "pdf-locked";
inline constexpr const char* kPdfSigned = "pdf-signed";
inline constexpr const char* kPdfTagged = "pdf-tagged";
inline constexpr const char* kPdfVersion = "pdf-version";
inline constexpr const char* kPdfBox = "pdf-box";
inline constexpr const char* kPdfDialectsDiffer = "pdf-dialects-differ";
inline constexpr const char* kPdfKeyMissing = "pdf-key-missing";
inline constexpr const char* kPdfKeyType = "pdf-key-type";
inline constexpr const char* kPdfMapUnreadable = "pdf-map-unreadable";
inline constexpr const char* kPdfMirrored = "pdf-mirrored";
inline constexpr const char* kPdfPoints = "pdf-points";
inline constexpr const char* kPdfSystem = "pdf-system";
inline constexpr const char* kPdfSystemsDiffer = "pdf-systems-differ";
inline constexpr const char* kPdfUnitSquare = "pdf-unit-square";
inline constexpr const char* kPointsCoverLittle = "points-cover-little";
inline constexpr const char* kPointsNearLine = "points-near-line";
inline constexpr const char* kPointsOutside = "points-outside";
inline constexpr const char* kPointsRounded = "points-rounded";
inline constexpr const char* kPolarFrame = "polar-frame";
inline constexpr const char* kPrjUnreadable = "prj-unreadable";
inline constexpr const char* kReadByType = "read-by-type";
inline constexpr const char* kReadFrom = "read-from";
inline constexpr const char* kReadRemark = "read-remark";
inline constexpr const char* kRotationNotRead = "rotation-not-read";
inline constexpr const char* kScaleZero = "scale-zero";
inline constexpr const char* kRasterSizeDiffers = "raster-size-differs";
inline constexpr const char* kSourcesDiffer = "sources-differ";
inline constexpr const char* kSystemReplaced = "system-replaced";
inline constexpr const char* kSystemUnknown = "system-unknown";
inline constexpr const char* kTransformMissing = "transform-missing";
inline constexpr const char* kUnitsMixed = "units-mixed";
inline constexpr const char* kWorldFileText = "world-file-text";

// Of saves.
inline constexpr const char* kLostDatumShift = "lost-datum-shift";
inline constexpr const char* kLostDigits = "lost-digits";
inline constexpr const char* kLostDisabledPoints = "lost-disabled-points";
inline constexpr const char* kLostEpoch = "lost-epoch";
inline constexpr const char* kLostFit = "lost-fit";
inline constexpr const char* kLostPointFractions = "lost-point-fractions";
inline constexpr const char* kLostPointHeights = "lost-point-heights";
inline constexpr const char* kLostPointNames = "lost-point-names";
inline constexpr const char* kLostPoints = "lost-points";
inline constexpr const char* kLostRotation = "lost-rotation";
inline constexpr const char* kLostSystem = "lost-system";
inline constexpr const char* kLostVerticalPart = "lost-vertical-part";
inline constexpr const char* kLostVerticalUnit = "lost-vertical-unit";
inline constexpr const char* kMapReplaced = "map-replaced";
inline constexpr const char* kPageNotFilled = "page-not-filled";
inline constexpr const char* kRasterSizeUnstated = "raster-size-unstated";
inline constexpr const char* kRasterUnnamed = "raster-unnamed";
inline constexpr const char* kSaveRemark = "save-remark";
inline constexpr const char* kSavedElsewhere = "saved-elsewhere";
inline constexpr const char* kSavedLayout = "saved-layout";
inline constexpr const char* kSavedNotInGdal = "saved-not-in-gdal";
inline constexpr const char* kSavedOverridden = "saved-overridden";
inline constexpr const char* kSavedPointsDiffer = "saved-points-differ";
inline constexpr const char* kSavedRegistration = "saved-registration";
inline constexpr const char* kSavedStale = "saved-stale";
inline constexpr const char* kSavedSystemDiffers = "saved-system-differs";
inline constexpr const char* kSavedSystemKept = "saved-system-kept";
inline constexpr const char* kSavedSystemLost = "saved-system-lost";
inline constexpr const char* kSavedTransformLost = "saved-transform-lost";
inline constexpr const char* kSavedUnreadable = "saved-unreadable";
inline constexpr const char* kSavedVerticalUnit = "saved-vertical-unit";
inline constexpr const char* kSystemAssumed = "system-assumed";

}  // namespace MapAnchor::DiagnosticId
