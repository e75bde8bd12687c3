#pragma once

#include <Tellurion/BException.h>

namespace Tellurion {

/// A file was read but holds nothing that can be used.
class TELLURION_EXPORT BFileContentNotValidException : public BException {
public:
    BFileContentNotValidException(const BString& source, const BString& detail);
    BFileContentNotValidException(const BFileContentNotValidException&) noexcept;
    BFileContentNotValidException& operator=(const BFileContentNotValidException&) noexcept;
    ~BFileContentNotValidException() override;
    const char* GetTypeName() const noexcept override;
};

}  // namespace Tellurion
