#pragma once

#include <MapAnchor/Export.h>
#include <Tellurion/BException.h>

namespace MapAnchor {

/// The kind of reference cannot do what was asked, such as being written.
class MAPANCHOR_EXPORT BGeoReferenceNotSupportedException : public Tellurion::BException {
public:
    BGeoReferenceNotSupportedException();
    BGeoReferenceNotSupportedException(const Tellurion::BString& source, const Tellurion::BString& detail);
    BGeoReferenceNotSupportedException(const BGeoReferenceNotSupportedException&) noexcept;
    BGeoReferenceNotSupportedException& operator=(const BGeoReferenceNotSupportedException&) noexcept;
    ~BGeoReferenceNotSupportedException() override;
    const char* GetTypeName() const noexcept override;
};

}  // namespace MapAnchor
