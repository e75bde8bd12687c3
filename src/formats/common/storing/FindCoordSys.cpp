#include "common/storing/FindCoordSys.h"

#include <MapAnchor/BGeoReferenceInvalidCoordSysException.h>
#include <Tellurion/BLogger.h>

namespace MapAnchor {

using Tellurion::BCoordSys;
using Tellurion::BLogger;
using Tellurion::BSharedPtr;
using Tellurion::BString;
using Tellurion::ELogSeverity;

BSharedPtr<BCoordSys> FindCoordSys(const std::function<BSharedPtr<BCoordSys>()>& look_up,
                                   OnFailure on_failure, const CoordSysTexts& texts) {
    BSharedPtr<BCoordSys> system;
    try {
        system = look_up();
    } catch (const Tellurion::BException& error) {
        const BString text = error.GetDetailedMessage();
        BLogger::Instance()->Write(ELogSeverity::Error, texts.log_line(text));
        if (on_failure == OnFailure::Throw)
            throw BGeoReferenceInvalidCoordSysException(texts.thrown_source, text);
        return {};
    }
    if (system.IsEmpty() && on_failure == OnFailure::Throw)
        throw BGeoReferenceInvalidCoordSysException(texts.source, texts.nothing_found());
    return system;
}

}  // namespace MapAnchor
