#pragma once

#include <MapAnchor/Export.h>
#include <Tellurion/BException.h>

namespace MapAnchor {

/// A parameter of a read was rejected.
class MAPANCHOR_EXPORT BReadParametersException : public Tellurion::BException {
public:
    BReadParametersException();
    explicit BReadParametersException(const Tellurion::BString& message);
    BReadParametersException(const Tellurion::BString& message, const Tellurion::BString& source,
                             const Tellurion::BString& detail);
    BReadParametersException(const BReadParametersException&) noexcept;
    BReadParametersException& operator=(const BReadParametersException&) noexcept;
    ~BReadParametersException() override;
    const char* GetTypeName() const noexcept override;
};

}  // namespace MapAnchor
