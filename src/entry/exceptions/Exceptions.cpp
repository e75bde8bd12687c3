#include <MapAnchor/BGeoReferenceInvalidCoordSysException.h>
#include <MapAnchor/BGeoReferenceInvalidReferenceFileException.h>
#include <MapAnchor/BGeoReferenceInvalidTransformException.h>
#include <MapAnchor/BGeoReferenceNotSupportedException.h>
#include <MapAnchor/BGeoReferenceReadException.h>
#include <MapAnchor/BGeoReferenceWriteException.h>
#include <MapAnchor/BReadParametersException.h>

namespace MapAnchor {

using Tellurion::BString;

namespace {

// The fixed messages, spelling included.
constexpr const char* kInvalidCoordSys = "The coordinate system in this reference file is not valid.";
constexpr const char* kInvalidReferenceFile = "The reference file is not valid.";
constexpr const char* kInvalidTransform = "The transform in this reference file is not valid.";
constexpr const char* kNotSupported = "The operation being performed is not supported by this reference type";
constexpr const char* kRead = "A problem occured while trying to read the reference file.";
constexpr const char* kWrite = "A problem occured while trying to write the reference file.";
constexpr const char* kReadParameters = "BReadParameters Exception";

}  // namespace

BGeoReferenceInvalidCoordSysException::BGeoReferenceInvalidCoordSysException()
    : BCoordSysException(kInvalidCoordSys) {}
BGeoReferenceInvalidCoordSysException::BGeoReferenceInvalidCoordSysException(const BString& source,
                                                                             const BString& detail)
    : BCoordSysException(kInvalidCoordSys, source, detail) {}
BGeoReferenceInvalidCoordSysException::BGeoReferenceInvalidCoordSysException(
    const BGeoReferenceInvalidCoordSysException&) noexcept = default;
BGeoReferenceInvalidCoordSysException& BGeoReferenceInvalidCoordSysException::operator=(
    const BGeoReferenceInvalidCoordSysException&) noexcept = default;
BGeoReferenceInvalidCoordSysException::~BGeoReferenceInvalidCoordSysException() = default;
const char* BGeoReferenceInvalidCoordSysException::GetTypeName() const noexcept {
    return "BGeoReferenceInvalidCoordSysException";
}

BGeoReferenceInvalidReferenceFileException::BGeoReferenceInvalidReferenceFileException()
    : BDataManagerException(kInvalidReferenceFile) {}
BGeoReferenceInvalidReferenceFileException::BGeoReferenceInvalidReferenceFileException(const BString& source,
                                                                                       const BString& detail)
    : BDataManagerException(kInvalidReferenceFile, source, detail) {}
BGeoReferenceInvalidReferenceFileException::BGeoReferenceInvalidReferenceFileException(
    const BGeoReferenceInvalidReferenceFileException&) noexcept = default;
BGeoReferenceInvalidReferenceFileException& BGeoReferenceInvalidReferenceFileException::operator=(
    const BGeoReferenceInvalidReferenceFileException&) noexcept = default;
BGeoReferenceInvalidReferenceFileException::~BGeoReferenceInvalidReferenceFileException() = default;
const char* BGeoReferenceInvalidReferenceFileException::GetTypeName() const noexcept {
    return "BGeoReferenceInvalidReferenceFileException";
}

BGeoReferenceInvalidTransformException::BGeoReferenceInvalidTransformException()
    : BException(kInvalidTransform) {}
BGeoReferenceInvalidTransformException::BGeoReferenceInvalidTransformException(const BString& source,
                                                                               const BString& detail)
    : BException(kInvalidTransform, source, detail) {}
BGeoReferenceInvalidTransformException::BGeoReferenceInvalidTransformException(
    const BGeoReferenceInvalidTransformException&) noexcept = default;
BGeoReferenceInvalidTransformException& BGeoReferenceInvalidTransformException::operator=(
    const BGeoReferenceInvalidTransformException&) noexcept = default;
BGeoReferenceInvalidTransformException::~BGeoReferenceInvalidTransformException() = default;
const char* BGeoReferenceInvalidTransformException::GetTypeName() const noexcept {
    return "BGeoReferenceInvalidTransformException";
}

BGeoReferenceNotSupportedException::BGeoReferenceNotSupportedException() : BException(kNotSupported) {}
BGeoReferenceNotSupportedException::BGeoReferenceNotSupportedException(const BString& source,
                                                                       const BString& detail)
    : BException(kNotSupported, source, detail) {}
BGeoReferenceNotSupportedException::BGeoReferenceNotSupportedException(
    const BGeoReferenceNotSupportedException&) noexcept = default;
BGeoReferenceNotSupportedException& BGeoReferenceNotSupportedException::operator=(
    const BGeoReferenceNotSupportedException&) noexcept = default;
BGeoReferenceNotSupportedException::~BGeoReferenceNotSupportedException() = default;
const char* BGeoReferenceNotSupportedException::GetTypeName() const noexcept {
    return "BGeoReferenceNotSupportedException";
}

BGeoReferenceReadException::BGeoReferenceReadException() : BDataManagerException(kRead) {}
BGeoReferenceReadException::BGeoReferenceReadException(const BString& source, const BString& detail)
    : BDataManagerException(kRead, source, detail) {}
BGeoReferenceReadException::BGeoReferenceReadException(const BGeoReferenceReadException&) noexcept = default;
BGeoReferenceReadException& BGeoReferenceReadException::operator=(
    const BGeoReferenceReadException&) noexcept = default;
BGeoReferenceReadException::~BGeoReferenceReadException() = default;
const char* BGeoReferenceReadException::GetTypeName() const noexcept {
    return "BGeoReferenceReadException";
}

BGeoReferenceWriteException::BGeoReferenceWriteException() : BDataManagerException(kWrite) {}
BGeoReferenceWriteException::BGeoReferenceWriteException(const BString& source, const BString& detail)
    : BDataManagerException(kWrite, source, detail) {}
BGeoReferenceWriteException::BGeoReferenceWriteException(const BGeoReferenceWriteException&) noexcept =
    default;
BGeoReferenceWriteException& BGeoReferenceWriteException::operator=(
    const BGeoReferenceWriteException&) noexcept = default;
BGeoReferenceWriteException::~BGeoReferenceWriteException() = default;
const char* BGeoReferenceWriteException::GetTypeName() const noexcept {
    return "BGeoReferenceWriteException";
}

BReadParametersException::BReadParametersException() : BException(kReadParameters) {}
BReadParametersException::BReadParametersException(const BString& message) : BException(message) {}
BReadParametersException::BReadParametersException(const BString& message, const BString& source,
                                                   const BString& detail)
    : BException(message, source, detail) {}
BReadParametersException::BReadParametersException(const BReadParametersException&) noexcept = default;
BReadParametersException& BReadParametersException::operator=(const BReadParametersException&) noexcept =
    default;
BReadParametersException::~BReadParametersException() = default;
const char* BReadParametersException::GetTypeName() const noexcept {
    return "BReadParametersException";
}

}  // namespace MapAnchor
