#pragma once

#include "ReadingState.h"

namespace MapAnchor {

/// Fills the state, whose file is set, as BReading::Of() promises.
void ReadInSteps(const BReadingOptions& options, ReadingState& state);

/// Describes the page of a PDF: its facts, the raster's size where the options name none, and
/// what a person should know of it.
void DescribePdfPage(const BReadingOptions& options, ReadingState& state);

/// The failure that is being handled, in the page's words where it has none of its own.
void FailByPdf(ReadingState& state);

/// How a reading without a reference ended.
BReading::EOutcome OutcomeOf(const ReadingState& state);

/// Looks for the raster's size in the file that was read or in the raster beside it.
void FindRasterSize(ReadingState& state);

}  // namespace MapAnchor
