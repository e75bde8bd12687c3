#include "ControlPointParsers.h"

#include <Tellurion/Numbers.h>

#include <algorithm>

namespace MapAnchor {

using Tellurion::BControlPoint;
using Tellurion::PrintShortest;

std::string FormatGcpOptions(const BControlPointFile& file) {
    std::string text;
    std::string system = file.CoordSys.StdStr();
    std::replace(system.begin(), system.end(), '\'', ' ');
    if (!system.empty()) text += std::string("-a_srs '") + system + "'\n";
    for (const BControlPoint& point : file.Points) {
        if (!point.Enabled) continue;
        text += "-gcp";
        for (const double value : {point.Column, point.Row, point.World.x, point.World.y, point.World.z})
            text.append(" ").append(PrintShortest(value));
        text += "\n";
    }
    return text;
}

}  // namespace MapAnchor
