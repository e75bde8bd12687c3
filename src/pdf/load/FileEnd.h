#pragma once

#include "load/FileWindow.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace VellumLib {

class ValueReader;

/// The last 1,024 bytes of a file, where readers look for "startxref".
class FileEnd {
public:
    explicit FileEnd(FileWindow& file);

    /// The number after the last "startxref", which a mark of the end must follow; a PdfError otherwise.
    std::int64_t TakeStart(ValueReader& values) const;
    /// Where a word is last in the file; a PdfError where it is not among these bytes.
    std::int64_t LastPlaceOf(std::string_view word) const;

private:
    std::int64_t first_;
    std::string bytes_;
};

}  // namespace VellumLib
