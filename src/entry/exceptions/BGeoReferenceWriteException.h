#pragma once

#include <MapAnchor/Export.h>
#include <Tellurion/BDataManagerException.h>

namespace MapAnchor {

/// Writing a reference file failed on the way: nothing of it is to be trusted.
class MAPANCHOR_EXPORT BGeoReferenceWriteException : public Tellurion::BDataManagerException {
public:
    BGeoReferenceWriteException();
    BGeoReferenceWriteException(const Tellurion::BString& source, const Tellurion::BString& detail);
    BGeoReferenceWriteException(const BGeoReferenceWriteException&) noexcept;
    BGeoReferenceWriteException& operator=(const BGeoReferenceWriteException&) noexcept;
    ~BGeoReferenceWriteException() override;
    const char* GetTypeName() const noexcept override;
};

}  // namespace MapAnchor
