#pragma once

#include "commands/Convert.h"

#include <Tellurion/BControlPoint.h>
#include <Tellurion/BFitReport.h>

#include <optional>
#include <string>
#include <vector>

namespace Tool {

struct GeoreferenceOptions {
    ConvertOptions convert;  ///< for the save
    std::string image;
    std::string file;  ///< of control points
    std::vector<std::string> gcps;
    std::string order;
    std::vector<std::string> drop;
    std::string points_crs;
    std::string crs;
    std::vector<double> bounds;
    std::optional<Tellurion::EMathTransformType> fit;  ///< empty for auto
    std::optional<double> max_rmse;
    std::string report;  ///< the page to write; empty for none
};

/// A reference that was made, and what is known of it.
struct Georeferenced {
    ReadResult result;
    std::vector<Tellurion::BControlPoint> points;
    std::optional<Tellurion::BFitReport> report;  ///< empty for bounds
    std::vector<Tellurion::BFitAlternative> alternatives;
    std::vector<std::string> written;
    std::optional<double> rounding;  ///< what whole pixels cost, in pixels
    ExitStatus status = ExitStatus::Done;
};

void PrintGeoreferenced(const GeoreferenceOptions& options, const Georeferenced& made,
                        const Console& console);

}  // namespace Tool
