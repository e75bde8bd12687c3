#pragma once

#include "read/ReadFile.h"

#include <MapAnchor/BGeoPDFPage.h>

/// Puts the description of the first page into `result`, the raster's size where the
/// options name none, and remarks on what a person should know of the page.
void LookAtPdfPage(const Tellurion::BString& file, const ReadOptions& options, ReadResult& result);

/// The failure that is being handled; where it has no text here, in the page's words.
/// To be called in a catch (...) block.
Failure PdfFailure(const MapAnchor::BGeoPDFPage& page);

/// Adds a remark on what was expected and what stands there.
void ExplainPdfFailure(ReadResult& result);

/// True for a page that can be read and has no map for the reading rules.
bool IsWithoutMap(const MapAnchor::BGeoPDFPage& page);
