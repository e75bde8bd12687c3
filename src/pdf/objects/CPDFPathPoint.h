#pragma once

namespace VellumLib {

/// A point of a path, with the control points of the curves that leave and reach it;
/// a point whose controls are zero is a corner. The point record of the whole layer.
struct CPDFPathPoint {
    double x = 0.0;
    double y = 0.0;
    double outgoing_x = 0.0;
    double outgoing_y = 0.0;
    double incoming_x = 0.0;
    double incoming_y = 0.0;

    friend bool operator==(const CPDFPathPoint& a, const CPDFPathPoint& b) = default;
};

}  // namespace VellumLib
