#pragma once

#include <Tellurion/BException.h>

namespace Tellurion {

/// A coordinate system cannot be read, written or applied.
class TELLURION_EXPORT BCoordSysException : public BException {
public:
    explicit BCoordSysException(const BString& message);
    BCoordSysException(const BString& message, const BString& source, const BString& detail);
    BCoordSysException(const BCoordSysException&) noexcept;
    BCoordSysException& operator=(const BCoordSysException&) noexcept;
    ~BCoordSysException() override;
    const char* GetTypeName() const noexcept override;
};

}  // namespace Tellurion
