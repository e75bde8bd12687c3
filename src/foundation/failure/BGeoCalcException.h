#pragma once

#include <Tellurion/BException.h>

namespace Tellurion {

/// A failure of the coordinate system database.
class TELLURION_EXPORT BGeoCalcException : public BException {
public:
    explicit BGeoCalcException(const BString& message);
    BGeoCalcException(const BString& message, const BString& source, const BString& detail);
    BGeoCalcException(const BGeoCalcException&) noexcept;
    BGeoCalcException& operator=(const BGeoCalcException&) noexcept;
    ~BGeoCalcException() override;
    const char* GetTypeName() const noexcept override;
};

}  // namespace Tellurion
