#pragma once

#include "read/ReadFile.h"
#include "terminal/CommonOptions.h"

#include <string>
#include <vector>

namespace Tool {

/// Prints what a person sees of one input.
void PrintReference(const ReadResult& result, const CommonOptions& common, const Console& console);

/// A label and what it labels.
std::string RenderLine(const char* label, const std::string& text, const Console& console);

/// Says the remarks about a file, and its failure, on stderr, a line each.
void TalkAbout(const std::string& file, const Diagnostics& diagnostics, const Failure* failure,
               const Console& console);

/// Rows of equal length as columns; the first row is the heading.
std::string RenderTable(const std::vector<std::vector<std::string>>& rows, const Console& console);

}  // namespace Tool
