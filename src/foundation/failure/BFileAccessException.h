#pragma once

#include <Tellurion/BException.h>

namespace Tellurion {

/// A file could not be opened.
class TELLURION_EXPORT BFileAccessException : public BException {
public:
    BFileAccessException(const BString& source, const BString& detail);
    BFileAccessException(const BFileAccessException&) noexcept;
    BFileAccessException& operator=(const BFileAccessException&) noexcept;
    ~BFileAccessException() override;
    const char* GetTypeName() const noexcept override;
};

}  // namespace Tellurion
