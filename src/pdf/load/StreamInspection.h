#pragma once

#include "load/LoadBudget.h"

#include <cstdint>
#include <string>

namespace VellumLib {

class FileWindow;

/// Looks at a stream of cross-references or of objects before the parser decodes it
/// whole: decodes it up to a limit, and charges to the budget what its content will
/// cost. `dictionary` is the text of its dictionary, `start` the place of its data.
/// Throws PdfError where the stream cannot be afforded, or where it would make the
/// parser read past its data.
void InspectStream(FileWindow& file, const std::string& dictionary, std::int64_t start, LoadBudget& budget);

/// True if the dictionary says that the document is encrypted: a trailer, or a
/// cross-reference stream, with an "Encrypt" entry.
bool AnnouncesEncryption(const std::string& dictionary, bool is_trailer);

}  // namespace VellumLib
