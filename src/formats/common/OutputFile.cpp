#include "common/OutputFile.h"

#include <MapAnchor/BGeoReferenceWriteException.h>
#include <Tellurion/BFileAccessException.h>
#include <Tellurion/BLogger.h>

namespace MapAnchor {

using Tellurion::BLogger;
using Tellurion::BString;
using Tellurion::ELogSeverity;

void OutputFile::OpenOrThrow(const BString& detail) {
    if (Open()) return;
    BLogger::Instance()->WriteLine(ELogSeverity::Error, "%s Failed to open file <%ls>", voice_.source,
                                   file_.GetTarget());
    throw Tellurion::BFileAccessException(voice_.source, detail);
}

void OutputFile::Commit() {
    if (!file_.Commit(kSync))
        throw BGeoReferenceWriteException(voice_.source,
                                          BString::Format("Failed writing %s file <%ls>: %ls.", voice_.kind,
                                                          file_.GetTarget(), file_.GetFailure()));
    for (const BString& loss : file_.GetLosses())
        BLogger::Instance()->WriteLine(ELogSeverity::Error, "%s %ls", voice_.source, loss);
}

}  // namespace MapAnchor
