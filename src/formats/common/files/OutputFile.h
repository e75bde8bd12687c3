#pragma once

#include "common/policy/FailureTexts.h"

#include <Tellurion/BException.h>
#include <Tellurion/BFileReplacement.h>
#include <Tellurion/BString.h>
#include <Tellurion/TextPieces.h>

namespace MapAnchor {

/// A sidecar that is being written. Its name keeps the old content until the whole of the
/// new one is on the disk. A refused save leaves what was written before the refusal,
/// such as an empty file, which hosts rely on. A failed one leaves the old file.
class OutputFile {
public:
    OutputFile(const Tellurion::BString& path, const FailureTexts& texts) : file_(path), texts_(texts) {}

    bool Open() { return file_.Open(); }
    /// A failure is logged and ends as a BFileAccessException with that detail.
    void OpenOrThrow(const Tellurion::BString& detail);

    void Write(const Tellurion::BString& text) { file_.Write(text.StdStr()); }
    /// For a text that is made piece by piece.
    Tellurion::TextPieces Pieces() {
        return Tellurion::TextPieces([this](std::string_view piece) { file_.Write(piece); });
    }

    /// Runs `work`, which writes and answers whether it saves; a BException and false are
    /// refusals. What does not reach the disk ends as a BGeoReferenceWriteException.
    template <class Work>
    bool Save(Work work);

private:
    void Commit();
    void LeaveRefused() { file_.Commit(kSync); }

    /// A sidecar is written in a fraction of the time that its folder takes.
    static constexpr auto kSync = Tellurion::BFileReplacement::EAfterPowerFailure::OldOrNew;

    Tellurion::BFileReplacement file_;
    const FailureTexts& texts_;
};

template <class Work>
bool OutputFile::Save(Work work) {
    bool saves = false;
    try {
        saves = work();
    } catch (const Tellurion::BException&) {
        LeaveRefused();
        throw;
    }
    if (saves)
        Commit();
    else
        LeaveRefused();
    return saves;
}

}  // namespace MapAnchor
