#pragma once

#include <MapAnchor/Export.h>
#include <Tellurion/BCoordSysException.h>

namespace MapAnchor {

/// The coordinate system in a reference file cannot be understood or written.
class MAPANCHOR_EXPORT BGeoReferenceInvalidCoordSysException : public Tellurion::BCoordSysException {
public:
    BGeoReferenceInvalidCoordSysException();
    BGeoReferenceInvalidCoordSysException(const Tellurion::BString& source, const Tellurion::BString& detail);
    BGeoReferenceInvalidCoordSysException(const BGeoReferenceInvalidCoordSysException&) noexcept;
    BGeoReferenceInvalidCoordSysException& operator=(const BGeoReferenceInvalidCoordSysException&) noexcept;
    ~BGeoReferenceInvalidCoordSysException() override;
    const char* GetTypeName() const noexcept override;
};

}  // namespace MapAnchor
