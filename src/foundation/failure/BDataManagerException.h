#pragma once

#include <Tellurion/BException.h>

namespace Tellurion {

/// Reference data cannot be read or written.
class TELLURION_EXPORT BDataManagerException : public BException {
public:
    explicit BDataManagerException(const BString& message);
    BDataManagerException(const BString& message, const BString& source, const BString& detail);
    BDataManagerException(const BDataManagerException&) noexcept;
    BDataManagerException& operator=(const BDataManagerException&) noexcept;
    ~BDataManagerException() override;
    const char* GetTypeName() const noexcept override;
};

}  // namespace Tellurion
