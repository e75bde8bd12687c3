#pragma once

#include <MapAnchor/Export.h>
#include <Tellurion/BDataManagerException.h>

namespace MapAnchor {

/// Reading a reference file failed on the way.
class MAPANCHOR_EXPORT BGeoReferenceReadException : public Tellurion::BDataManagerException {
public:
    BGeoReferenceReadException();
    BGeoReferenceReadException(const Tellurion::BString& source, const Tellurion::BString& detail);
    BGeoReferenceReadException(const BGeoReferenceReadException&) noexcept;
    BGeoReferenceReadException& operator=(const BGeoReferenceReadException&) noexcept;
    ~BGeoReferenceReadException() override;
    const char* GetTypeName() const noexcept override;
};

}  // namespace MapAnchor
