#pragma once

#include "read/ReadFile.h"

#include <string>

namespace Tool {

enum class RowFormat { JsonLines, GeoJsonSequence, Csv, Stac };

struct RowSettings {
    RowFormat format = RowFormat::JsonLines;
    bool with_feature = false;  ///< for an index
};

/// What one input comes to.
struct Row {
    ExitStatus status = ExitStatus::Done;
    std::string text;     ///< for the output, with its line end
    std::string feature;  ///< the same as a GeoJSON feature; empty unless asked for
};

Row MakeRow(ReadResult& result, const RowSettings& settings);

/// Of a PDF one row for each map of all its pages, in the order of the file; of other inputs and
/// of a PDF without maps the one row. The status is that of all, or Warnings where they differ.
Row MakeRowsOfMaps(const std::string& name, const ReadOptions& options, const RowSettings& settings,
                   LogCollector& log);

/// Of an input that no worker could finish.
Row MakeLostRow(const std::string& name, const FailureType& type, const std::string& detail,
                const RowSettings& settings);

/// What precedes the rows; empty for most formats.
std::string HeadingOf(RowFormat format);

/// A row on its way between processes.
std::string Pack(const Row& row);
Row Unpack(std::string bytes);

}  // namespace Tool
