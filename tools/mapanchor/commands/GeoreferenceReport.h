#pragma once

#include "commands/Georeference.h"

#include <string>

namespace Tool {

/// A page of its own, without anything from elsewhere: the raster's outline with the points and
/// their residuals as arrows, the table of the points, which sorts, and the fits compared.
std::string RenderReportPage(const GeoreferenceOptions& options, const Georeferenced& made);

/// The drawing of that page.
std::string DrawResiduals(const Georeferenced& made);

/// A text for HTML and SVG; what is not printable is shown as such.
std::string HtmlText(const std::string& text);

}  // namespace Tool
