#pragma once

#include <MapAnchor/BReading.h>
#include <Tellurion/BException.h>

#include <string>

namespace Tool {

/// What a caller can do about a failure; JSON prints it as the "class", and exit statuses follow it.
enum class FailureKind {
    Invalid,      ///< what the file or the command holds cannot be used
    Access,       ///< a file cannot be found, opened or written
    NoReference,  ///< a file was read and has no georeference
    Unsupported,  ///< refused: an unsupported kind, encryption, a missing driver
    Crash,        ///< the reading process ended
    Timeout,
    Memory
};

FailureKind KindOf(MapAnchor::BReading::EOutcome outcome);

/// The word of the kind in JSON.
const char* WordFor(FailureKind kind);

/// A failure in parts; any of the texts but the type may be empty.
struct Failure {
    std::string type;  ///< the name of the exception's class or "Crash", "Timeout", "OutOfMemory"
    std::string message;
    std::string source;
    std::string detail;
    FailureKind kind = FailureKind::Invalid;

    std::string Text() const;
};

Failure FailureOf(const Tellurion::BException& error);

/// The failure that is being handled, to be called in a catch (...) block.
Failure CurrentFailure();

/// The name of a failure of this program itself, with its kind.
struct FailureType {
    const char* name;
    FailureKind kind;
};

namespace FailureTypes {
inline constexpr FailureType kFileAccess{"BFileAccessException", FailureKind::Access};
inline constexpr FailureType kNoReference{"BFileContentNotValidException", FailureKind::NoReference};
inline constexpr FailureType kUnsupportedFile{"BUnsupportedFileTypeException", FailureKind::Unsupported};
inline constexpr FailureType kNotSupported{"BGeoReferenceNotSupportedException", FailureKind::Unsupported};
inline constexpr FailureType kWrite{"BGeoReferenceWriteException", FailureKind::Invalid};
inline constexpr FailureType kTransform{"BGeoReferenceInvalidTransformException", FailureKind::Invalid};
inline constexpr FailureType kParameters{"BReadParametersException", FailureKind::Invalid};
inline constexpr FailureType kCoordSys{"BCoordSysException", FailureKind::Invalid};
inline constexpr FailureType kCrash{"Crash", FailureKind::Crash};
inline constexpr FailureType kTimeout{"Timeout", FailureKind::Timeout};
inline constexpr FailureType kOutOfMemory{"OutOfMemory", FailureKind::Memory};
}  // namespace FailureTypes

/// A failure that this program itself found.
Failure MakeFailure(const FailureType& type, const std::string& detail);

}  // namespace Tool
