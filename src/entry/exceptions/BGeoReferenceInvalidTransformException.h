#pragma once

#include <MapAnchor/Export.h>
#include <Tellurion/BException.h>

namespace MapAnchor {

/// The transform in a reference file cannot be built or written.
class MAPANCHOR_EXPORT BGeoReferenceInvalidTransformException : public Tellurion::BException {
public:
    BGeoReferenceInvalidTransformException();
    BGeoReferenceInvalidTransformException(const Tellurion::BString& source,
                                           const Tellurion::BString& detail);
    BGeoReferenceInvalidTransformException(const BGeoReferenceInvalidTransformException&) noexcept;
    BGeoReferenceInvalidTransformException& operator=(const BGeoReferenceInvalidTransformException&) noexcept;
    ~BGeoReferenceInvalidTransformException() override;
    const char* GetTypeName() const noexcept override;
};

}  // namespace MapAnchor
