#pragma once

#include <Tellurion/BFile.h>
#include <Tellurion/BString.h>

namespace MapAnchor {

/// How a format speaks of the file that it writes.
struct OutputVoice {
    const char* source;  ///< of log lines and exceptions, such as "BRefWLD::Write"
    const char* kind;    ///< such as "WLD"
};

/// Opens the file in text form; a failure is logged and ends as a BFileAccessException
/// with that detail.
void OpenForWriting(Tellurion::BFile& file, const OutputVoice& voice, const Tellurion::BString& failure);

/// Closes the file. A disk may be full only now: whatever did not reach the file ends
/// as a BGeoReferenceWriteException.
void CloseWritten(Tellurion::BFile& file, const OutputVoice& voice);

}  // namespace MapAnchor
