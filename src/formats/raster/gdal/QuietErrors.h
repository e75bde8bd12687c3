#pragma once

#include <Tellurion/BString.h>

#include <memory>

namespace MapAnchor {

/// What BQuietGdal holds; see there.
class QuietErrors {
public:
    virtual ~QuietErrors() = default;
    virtual Tellurion::BString FirstFailure() const = 0;
};

std::unique_ptr<QuietErrors> MakeQuietErrors();

}  // namespace MapAnchor
