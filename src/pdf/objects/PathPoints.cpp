#include "objects/PathPoints.h"

#include <utility>

namespace VellumLib {
namespace {

using Place = std::pair<double, double>;

Place PlaceAt(const CPDFStatement& statement, const CPDFOperation& operation, std::size_t first) {
    Place place{RealOperand(operation, first), RealOperand(operation, first + 1)};
    statement.Transform(place.first, place.second);
    return place;
}

CPDFPathPoint Corner(double x, double y) {
    CPDFPathPoint point;
    point.x = x;
    point.y = y;
    return point;
}

void AddCurve(CPDFStatement& statement, const CPDFOperation& operation) {
    auto& points = statement.GetPoints();
    const Place outgoing = PlaceAt(statement, operation, 0);
    const Place incoming = PlaceAt(statement, operation, 2);
    const Place end = PlaceAt(statement, operation, 4);
    if (!points.empty()) {
        CPDFPathPoint& before = points.back();
        before.outgoing_x = outgoing.first;
        before.outgoing_y = outgoing.second;
        before.incoming_x = 0.0;
        before.incoming_y = 0.0;
    }
    CPDFPathPoint point = Corner(end.first, end.second);
    point.incoming_x = incoming.first;
    point.incoming_y = incoming.second;
    points.push_back(point);
}

/// Two corners are transformed and the others made of them, also under a rotation.
void AddRectangle(CPDFStatement& statement, const CPDFOperation& operation) {
    const Place first = PlaceAt(statement, operation, 0);
    Place second{RealOperand(operation, 0) + RealOperand(operation, 2),
                 RealOperand(operation, 1) + RealOperand(operation, 3)};
    statement.Transform(second.first, second.second);
    auto& points = statement.GetPoints();
    points.push_back(Corner(first.first, first.second));
    points.push_back(Corner(first.first, second.second));
    points.push_back(Corner(second.first, second.second));
    points.push_back(Corner(second.first, first.second));
}

}  // namespace

double RealOperand(const CPDFOperation& operation, std::size_t index) {
    if (index >= operation.operands.size()) PODOFO_RAISE_ERROR(PoDoFo::ePdfError_ValueOutOfRange);
    return operation.operands[index].GetReal();
}

QMatrix MatrixOperand(const CPDFOperation& operation) {
    return QMatrix(RealOperand(operation, 0), RealOperand(operation, 1), RealOperand(operation, 2),
                   RealOperand(operation, 3), RealOperand(operation, 4), RealOperand(operation, 5));
}

void AddPathPoints(CPDFStatement& statement) {
    const CPDFOperation& operation = statement.GetOperations().back();
    if (operation.name == QLatin1String("m") || operation.name == QLatin1String("l")) {
        const Place place = PlaceAt(statement, operation, 0);
        statement.GetPoints().push_back(Corner(place.first, place.second));
    } else if (operation.name == QLatin1String("c")) {
        AddCurve(statement, operation);
    } else if (operation.name == QLatin1String("re")) {
        AddRectangle(statement, operation);
    }
}

}  // namespace VellumLib
