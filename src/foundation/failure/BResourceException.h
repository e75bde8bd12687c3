#pragma once

#include <Tellurion/BException.h>

namespace Tellurion {

/// Memory or another resource ran out.
class TELLURION_EXPORT BResourceException : public BException {
public:
    BResourceException(const BString& source, const BString& detail);
    BResourceException(const BResourceException&) noexcept;
    BResourceException& operator=(const BResourceException&) noexcept;
    ~BResourceException() override;
    const char* GetTypeName() const noexcept override;
};

}  // namespace Tellurion
