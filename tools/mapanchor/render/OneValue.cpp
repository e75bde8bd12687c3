#include "render/OneValue.h"

#include "read/AffineOf.h"
#include "read/RasterFrame.h"

#include <Tellurion/Numbers.h>
#include <Tellurion/Printable.h>

#include <algorithm>
#include <array>
#include <functional>
#include <initializer_list>
#include <limits>

namespace Tool {

using Tellurion::PrintShortest;

namespace {

std::string Joined(std::initializer_list<double> numbers) {
    std::string text;
    for (const double number : numbers)
        text += (text.empty() ? "" : " ") + PrintShortest(number);
    return text;
}

std::string Bounds(const ReadResult& result) {
    constexpr int kSteps = 16;  // along an edge, which may be curved
    constexpr double kFar = std::numeric_limits<double>::infinity();
    if (!result.width) return {};
    const RasterFrame frame = FrameOf(result, *result.width, *result.height);
    double west = kFar;
    double south = kFar;
    double east = -kFar;
    double north = -kFar;
    for (int i = 0; i <= kSteps; ++i) {
        const double part = static_cast<double>(i) / kSteps;
        for (const Position& pixel :
             {frame.At(part, 0), frame.At(part, 1), frame.At(0, part), frame.At(1, part)}) {
            const auto world = WorldAt(result, pixel);
            if (!world) return {};
            west = std::min(west, world->x);
            east = std::max(east, world->x);
            south = std::min(south, world->y);
            north = std::max(north, world->y);
        }
    }
    return Joined({west, south, east, north});
}

std::string System(const ReadResult& result, const std::string& value) {
    if (!result.reference.HasCoordSys()) return {};
    const auto& system = *result.reference.CoordSys;
    if (value == "epsg") return system.ToEPSGCode().StdStr();
    return value == "wkt" ? system.ToWholeWKT().StdStr() : system.GetName().StdStr();
}

std::string ValueOf(const ReadResult& result, const std::string& value) {
    if (!result.Ok()) return {};
    if (value == "bounds") return Bounds(result);
    if (value == "size")
        return result.width ? std::to_string(*result.width) + " " + std::to_string(*result.height) : "";
    if (value == "affine") {
        const auto t = AffineOf(result.reference);
        return t ? Joined({(*t)[0], (*t)[1], (*t)[2], (*t)[3], (*t)[4], (*t)[5]}) : "";
    }
    return System(result, value);
}

}  // namespace

const std::vector<std::string>& PrintableValues() {
    static const std::vector<std::string> values = {"crs", "epsg", "bounds", "size", "affine", "wkt"};
    return values;
}

std::string ValuesLine(const ReadResult& result, const std::vector<std::string>& values, bool& complete) {
    std::string line;
    for (const std::string& value : values) {
        const std::string text = ValueOf(result, value);
        if (text.empty()) complete = false;
        line += (&value == &values.front() ? "" : "\t") + Tellurion::Printable(text);
    }
    return line + "\n";
}

}  // namespace Tool
