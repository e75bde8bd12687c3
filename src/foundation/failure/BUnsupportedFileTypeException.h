#pragma once

#include <Tellurion/BException.h>

namespace Tellurion {

/// No reader or writer takes the file.
class TELLURION_EXPORT BUnsupportedFileTypeException : public BException {
public:
    BUnsupportedFileTypeException(const BString& source, const BString& detail);
    BUnsupportedFileTypeException(const BUnsupportedFileTypeException&) noexcept;
    BUnsupportedFileTypeException& operator=(const BUnsupportedFileTypeException&) noexcept;
    ~BUnsupportedFileTypeException() override;
    const char* GetTypeName() const noexcept override;
};

}  // namespace Tellurion
