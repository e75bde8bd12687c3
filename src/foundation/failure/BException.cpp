#include <Tellurion/BCoordSysException.h>
#include <Tellurion/BDataManagerException.h>
#include <Tellurion/BException.h>
#include <Tellurion/BFileAccessException.h>
#include <Tellurion/BFileContentNotValidException.h>
#include <Tellurion/BFileNotFoundException.h>
#include <Tellurion/BGeoCalcException.h>
#include <Tellurion/BResourceException.h>
#include <Tellurion/BUnsupportedFileTypeException.h>

namespace Tellurion {

struct BException::Parts {
    BString message;
    BString source;
    BString detail;
    BString text;
};

namespace {

BString Join(const BString& message, const BString& source, const BString& detail) {
    BString joined = message;
    if (!joined.IsEmpty() && !detail.IsEmpty()) joined += " ";
    joined += detail;
    if (source.IsEmpty()) return joined;
    if (!joined.IsEmpty()) joined += " ";
    return joined + BString("(") + source + BString(")");
}

}  // namespace

BException::BException(const BString& message) : BException(message, BString(), BString()) {}
BException::BException(const BString& source, const BString& detail)
    : BException(BString(), source, detail) {}
BException::BException(const BString& message, const BString& source, const BString& detail)
    : parts_(std::make_shared<const Parts>(Parts{message, source, detail, Join(message, source, detail)})) {
    parts_->text.Utf8();  // made now, so that what() cannot fail
}
BException::BException(const BException&) noexcept = default;
BException& BException::operator=(const BException&) noexcept = default;
BException::~BException() = default;

const char* BException::what() const noexcept {
    return parts_->text.Utf8();
}
BString BException::GetDetailedMessage() const {
    return parts_->text;
}
const BString& BException::GetMessageText() const {
    return parts_->message;
}
const BString& BException::GetSource() const {
    return parts_->source;
}
const BString& BException::GetDetail() const {
    return parts_->detail;
}
const char* BException::GetTypeName() const noexcept {
    return "BException";
}

BFileNotFoundException::BFileNotFoundException(const BString& source, const BString& detail)
    : BException(source, detail) {}
BFileNotFoundException::BFileNotFoundException(const BFileNotFoundException&) noexcept = default;
BFileNotFoundException& BFileNotFoundException::operator=(const BFileNotFoundException&) noexcept = default;
BFileNotFoundException::~BFileNotFoundException() = default;
const char* BFileNotFoundException::GetTypeName() const noexcept {
    return "BFileNotFoundException";
}

BFileAccessException::BFileAccessException(const BString& source, const BString& detail)
    : BException(source, detail) {}
BFileAccessException::BFileAccessException(const BFileAccessException&) noexcept = default;
BFileAccessException& BFileAccessException::operator=(const BFileAccessException&) noexcept = default;
BFileAccessException::~BFileAccessException() = default;
const char* BFileAccessException::GetTypeName() const noexcept {
    return "BFileAccessException";
}

BFileContentNotValidException::BFileContentNotValidException(const BString& source, const BString& detail)
    : BException(source, detail) {}
BFileContentNotValidException::BFileContentNotValidException(const BFileContentNotValidException&) noexcept =
    default;
BFileContentNotValidException& BFileContentNotValidException::operator=(
    const BFileContentNotValidException&) noexcept = default;
BFileContentNotValidException::~BFileContentNotValidException() = default;
const char* BFileContentNotValidException::GetTypeName() const noexcept {
    return "BFileContentNotValidException";
}

BUnsupportedFileTypeException::BUnsupportedFileTypeException(const BString& source, const BString& detail)
    : BException(source, detail) {}
BUnsupportedFileTypeException::BUnsupportedFileTypeException(const BUnsupportedFileTypeException&) noexcept =
    default;
BUnsupportedFileTypeException& BUnsupportedFileTypeException::operator=(
    const BUnsupportedFileTypeException&) noexcept = default;
BUnsupportedFileTypeException::~BUnsupportedFileTypeException() = default;
const char* BUnsupportedFileTypeException::GetTypeName() const noexcept {
    return "BUnsupportedFileTypeException";
}

BResourceException::BResourceException(const BString& source, const BString& detail)
    : BException(source, detail) {}
BResourceException::BResourceException(const BResourceException&) noexcept = default;
BResourceException& BResourceException::operator=(const BResourceException&) noexcept = default;
BResourceException::~BResourceException() = default;
const char* BResourceException::GetTypeName() const noexcept {
    return "BResourceException";
}

BCoordSysException::BCoordSysException(const BString& message) : BException(message) {}
BCoordSysException::BCoordSysException(const BString& message, const BString& source, const BString& detail)
    : BException(message, source, detail) {}
BCoordSysException::BCoordSysException(const BCoordSysException&) noexcept = default;
BCoordSysException& BCoordSysException::operator=(const BCoordSysException&) noexcept = default;
BCoordSysException::~BCoordSysException() = default;
const char* BCoordSysException::GetTypeName() const noexcept {
    return "BCoordSysException";
}

BDataManagerException::BDataManagerException(const BString& message) : BException(message) {}
BDataManagerException::BDataManagerException(const BString& message, const BString& source,
                                             const BString& detail)
    : BException(message, source, detail) {}
BDataManagerException::BDataManagerException(const BDataManagerException&) noexcept = default;
BDataManagerException& BDataManagerException::operator=(const BDataManagerException&) noexcept = default;
BDataManagerException::~BDataManagerException() = default;
const char* BDataManagerException::GetTypeName() const noexcept {
    return "BDataManagerException";
}

BGeoCalcException::BGeoCalcException(const BString& message) : BException(message) {}
BGeoCalcException::BGeoCalcException(const BString& message, const BString& source, const BString& detail)
    : BException(message, source, detail) {}
BGeoCalcException::BGeoCalcException(const BGeoCalcException&) noexcept = default;
BGeoCalcException& BGeoCalcException::operator=(const BGeoCalcException&) noexcept = default;
BGeoCalcException::~BGeoCalcException() = default;
const char* BGeoCalcException::GetTypeName() const noexcept {
    return "BGeoCalcException";
}

}  // namespace Tellurion
