#include "sidecar/points/PointTable.h"

#include <Tellurion/BException.h>
#include <Tellurion/BFitReport.h>
#include <Tellurion/Numbers.h>

#include <algorithm>

namespace MapAnchor {

using Tellurion::BControlPoint;
using Tellurion::PrintShortest;

namespace {

std::string Quoted(const std::string& text, char separator) {
    if (text.find_first_of(std::string("\"\r\n") + separator) == std::string::npos) return text;
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"') quoted += '"';
        quoted += c == '\n' || c == '\r' ? ' ' : c;
    }
    return quoted + '"';
}

std::string SystemLine(const PointTable& file) {
    std::string system = file.CoordSys.StdStr();
    std::replace(system.begin(), system.end(), '\n', ' ');
    return system.empty() ? "" : std::string("#CRS: ") + system + "\n";
}

}  // namespace

std::string FormatPointTable(const PointTable& file, char separator) {
    const std::string s(1, separator);
    std::string text =
        SystemLine(file) + "name" + s + "pixel" + s + "line" + s + "x" + s + "y" + s + "z" + s + "enabled\n";
    for (const BControlPoint& point : file.Points) {
        text += Quoted(point.Name.StdStr(), separator);
        for (const double value : {point.Column, point.Row, point.World.x, point.World.y, point.World.z})
            text += s + PrintShortest(value);
        text += s + (point.Enabled ? "1\n" : "0\n");
    }
    return text;
}

/// Never -0. The residuals are those of the best fit of first order that the points carry.
std::string FormatQgisPoints(const PointTable& file) {
    std::vector<Tellurion::BFitResidual> residuals(file.Points.size());
    try {
        residuals = Tellurion::BFitReport::Of(Tellurion::BMathTransform::Fit(
                                                  Tellurion::EMathTransformType::Affine, file.Points, 0, 0),
                                              file.Points, 0, 0)
                        .Residuals;
    } catch (const Tellurion::BException&) {
        // Too few points: zeros, as QGIS writes before a fit.
    }
    std::string text = SystemLine(file) +
                       (file.OldHeader ? "mapX,mapY,pixelX,pixelY" : "mapX,mapY,sourceX,sourceY") +
                       ",enable,dX,dY,residual\n";
    for (std::size_t i = 0; i < file.Points.size(); ++i) {
        const BControlPoint& point = file.Points[i];
        text += PrintShortest(point.World.x) + "," + PrintShortest(point.World.y) + "," +
                PrintShortest(point.Column) + "," + PrintShortest(0.0 - point.Row) +
                (point.Enabled ? ",1," : ",0,") + PrintShortest(residuals[i].DxPixels + 0.0) + "," +
                PrintShortest(residuals[i].DyPixels + 0.0) + "," +
                PrintShortest(residuals[i].ResidualPixels) + "\n";
    }
    return text;
}

}  // namespace MapAnchor
