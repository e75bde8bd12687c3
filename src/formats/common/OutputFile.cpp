#include "common/OutputFile.h"

#include <MapAnchor/BGeoReferenceWriteException.h>
#include <Tellurion/BFileAccessException.h>
#include <Tellurion/BLogger.h>

namespace MapAnchor {

using Tellurion::BLogger;
using Tellurion::BString;
using Tellurion::EFileMode;
using Tellurion::ELogSeverity;

void OpenForWriting(Tellurion::BFile& file, const OutputVoice& voice, const BString& failure) {
    if (file.Open(EFileMode::Write, EFileMode::Text)) return;
    BLogger::Instance()->WriteLine(ELogSeverity::Error, "%s Failed to open file <%ls>", voice.source,
                                   file.GetPath());
    throw Tellurion::BFileAccessException(voice.source, failure);
}

void CloseWritten(Tellurion::BFile& file, const OutputVoice& voice) {
    if (file.Close()) return;
    throw BGeoReferenceWriteException(
        voice.source, BString::Format("Failed writing %s file <%ls>.", voice.kind, file.GetPath()));
}

}  // namespace MapAnchor
