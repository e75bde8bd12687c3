#pragma once

#include <Tellurion/BException.h>

namespace Tellurion {

/// A file that should be there is not, or no file was named.
class TELLURION_EXPORT BFileNotFoundException : public BException {
public:
    BFileNotFoundException(const BString& source, const BString& detail);
    BFileNotFoundException(const BFileNotFoundException&) noexcept;
    BFileNotFoundException& operator=(const BFileNotFoundException&) noexcept;
    ~BFileNotFoundException() override;
    const char* GetTypeName() const noexcept override;
};

}  // namespace Tellurion
