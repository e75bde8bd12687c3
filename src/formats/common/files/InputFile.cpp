#include "common/files/InputFile.h"

#include <Tellurion/BFileAccessException.h>

namespace MapAnchor {

void ThrowUnreadable(const char* source, const Tellurion::BString& file) {
    throw Tellurion::BFileAccessException(
        source, Tellurion::BString::Format("Could not open the reference file <%ls> for reading.", file));
}

}  // namespace MapAnchor
