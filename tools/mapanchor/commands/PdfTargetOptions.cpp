#include "commands/Convert.h"

#include <MapAnchor/BMapAnchor.h>

#include <CLI/CLI.hpp>

#include <algorithm>

namespace Tool {

using MapAnchor::BMapAnchor;
using Tellurion::BString;

void AddPdfTargetOptions(CLI::App& command, ConvertOptions& options) {
    command.add_flag_callback(
        "--incremental", [&options] { options.incremental = true; },
        "Append to a PDF and keep its bytes, as for signed and large ones");
    command.add_flag_callback(
        "--no-incremental", [&options] { options.incremental = false; }, "Write the whole PDF");
    command
        .add_option("--target-page", options.target_page,
                    "Page of a PDF that is georeferenced, counted from 1")
        ->check(CLI::Range(1, 0x7FFFFFFF))
        ->type_name("N");
    command.add_flag("--add-map", options.add_map,
                     "The page of a PDF keeps its maps, and this one comes after them");
    command
        .add_option("--frame", options.frame,
                    "Part of the page that the map covers, in points from the lower left corner")
        ->type_name("LEFT,BOTTOM,RIGHT,TOP");
    command.add_option("--map-name", options.map_name, "Name of the map on the page")->type_name("NAME");
    command.add_flag("--wkt2", options.wkt2,
                     "Write a system that ESRI's text cannot describe in WKT 2, which few readers know");
}

void SetPdfTarget(ConvertOptions& options) {
    Tellurion::BParamList& params = options.read.params;
    params.SetInteger(BMapAnchor::kValPDFPage, options.target_page);
    if (options.wkt2) params.SetInteger(BMapAnchor::kValPDFWkt2, 1);
    if (!options.map_name.empty()) params.SetString(BMapAnchor::kValPDFMapName, BString(options.map_name));
    if (!options.frame.empty()) {
        std::string numbers = options.frame;
        std::ranges::replace(numbers, ',', ' ');
        params.SetString(BMapAnchor::kValPDFFrame, BString(numbers));
    }
    if (!options.add_map) return;
    params.SetInteger(BMapAnchor::kValPDFAdd, 1);
    options.incremental = true;  // what is there stays as it is
}

}  // namespace Tool
