#pragma once

#include <Tellurion/BKeyValuePairs.h>
#include <Tellurion/Export.h>

namespace Tellurion {

/// The optional arguments of a read or a save, by key.
class TELLURION_EXPORT BParamList : public BKeyValuePairs {
public:
    ~BParamList() override;
};

}  // namespace Tellurion
