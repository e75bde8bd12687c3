#pragma once

#include "ReadingSources.h"
#include "ReadingState.h"
#include "common/policy/ReadNotes.h"

#include <Tellurion/BParamList.h>
#include <Tellurion/ThreadLog.h>

namespace MapAnchor {

/// Fills the state, whose file is set, as BReading::Of() promises.
/// With `sources` all of a raster's are read and returned there.
void ReadInSteps(const BReadingOptions& options, ReadingState& state, SourceList* sources = nullptr);

/// How a reading ended.
BReading::EOutcome OutcomeOf(const ReadingState& state);

/// Adds what a reader noted and logged. A size that the state has already stays.
void TakeNotes(const ReadNotes& notes, Tellurion::ThreadLog& log, ReadingState& state);

/// Runs `read`, which throws or sets a failure where there is no reference, and adds its notes.
template <class Work>
void RunReader(ReadingState& state, Work read) {
    const ReadNotes notes(state.explains);
    Tellurion::ThreadLog log;
    try {
        read();
    } catch (...) {
        state.failure = ReadingFailure::Current();
    }
    TakeNotes(notes, log, state);
    state.outcome = OutcomeOf(state);
}

/// Describes the page of a PDF: its facts, the raster's size where the options name none, and
/// what a person should know of it.
void DescribePdfPage(const BReadingOptions& options, ReadingState& state);

/// The resolution in dots per inch of the raster on a page, 72 where none is stated. A
/// BReadParametersException for one that no raster has.
double ResolutionOf(const Tellurion::BParamList& params);

/// The failure that is being handled, in the page's words where it has none of its own.
void FailByPdf(ReadingState& state);

/// Adds what is doubtful about a reference, by a look at what is in memory.
void CheckReading(const BReadingOptions& options, ReadingState& state);

/// Looks for the raster's size in the file that was read or in the raster beside it.
void FindRasterSize(ReadingState& state);

}  // namespace MapAnchor
