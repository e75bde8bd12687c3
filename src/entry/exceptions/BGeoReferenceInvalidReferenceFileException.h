#pragma once

#include <MapAnchor/Export.h>
#include <Tellurion/BDataManagerException.h>

namespace MapAnchor {

/// The reference file itself is not valid.
class MAPANCHOR_EXPORT BGeoReferenceInvalidReferenceFileException : public Tellurion::BDataManagerException {
public:
    BGeoReferenceInvalidReferenceFileException();
    BGeoReferenceInvalidReferenceFileException(const Tellurion::BString& source,
                                               const Tellurion::BString& detail);
    BGeoReferenceInvalidReferenceFileException(const BGeoReferenceInvalidReferenceFileException&) noexcept;
    BGeoReferenceInvalidReferenceFileException& operator=(
        const BGeoReferenceInvalidReferenceFileException&) noexcept;
    ~BGeoReferenceInvalidReferenceFileException() override;
    const char* GetTypeName() const noexcept override;
};

}  // namespace MapAnchor
