#pragma once

#include "load/FileWindow.h"

#include <podofo/podofo.h>

#include <cstdint>
#include <string>

namespace VellumLib {

class Decryption;

/// Decodes the stream of `dictionary` whose data begins at `start`, up to `limit` bytes. What
/// decodes before a fault counts: the parser may stop short of it. A PdfError for encodings
/// that real files do not use for objects, cross-references or metadata. `decryption` is that of an
/// encrypted file; null where the stream is plain.
std::string DecodeStream(FileWindow& file, const PoDoFo::PdfVariant& dictionary, std::int64_t start,
                         std::uint64_t limit, Decryption* decryption = nullptr);

}  // namespace VellumLib
