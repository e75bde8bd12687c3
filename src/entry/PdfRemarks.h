#pragma once

#include <string_view>

namespace MapAnchor {

/// The id with which the PDF layer begins a line of its log, such as "pdf-units: ..."; else null.
const char* IdOfPdfRemark(std::string_view line);

}  // namespace MapAnchor
