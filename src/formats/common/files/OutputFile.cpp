#include "common/files/OutputFile.h"

#include <MapAnchor/BGeoReferenceWriteException.h>
#include <Tellurion/BFileAccessException.h>
#include <Tellurion/BLogger.h>

namespace MapAnchor {

using Tellurion::BLogger;
using Tellurion::BString;
using Tellurion::ELogSeverity;

void OutputFile::OpenOrThrow(const BString& detail) {
    if (Open()) return;
    BLogger::Instance()->WriteLine(ELogSeverity::Error, "%s Failed to open file <%ls>", texts_.source,
                                   file_.GetTarget());
    throw Tellurion::BFileAccessException(texts_.source, detail);
}

void OutputFile::Commit() {
    if (!file_.Commit(kSync))
        throw BGeoReferenceWriteException(
            texts_.source, BString::Format("Failed writing %s file <%ls>: %ls.", texts_.file_kind,
                                           file_.GetTarget(), file_.GetFailure()));
    for (const BString& loss : file_.GetLosses())
        BLogger::Instance()->WriteLine(ELogSeverity::Error, "%s %ls", texts_.source, loss);
}

}  // namespace MapAnchor
