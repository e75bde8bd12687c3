#pragma once

#include "objects/CPDFStatement.h"

namespace VellumLib {

/// The operand as a real; throws a PdfError when it is missing or no number.
double RealOperand(const CPDFOperation& operation, std::size_t index);
/// The six operands as a matrix.
QMatrix MatrixOperand(const CPDFOperation& operation);
/// Adds the points of the statement's last operation, under the statement's matrix.
/// Of m, l, c and re alone: v and y leave a gap in the points of their path.
void AddPathPoints(CPDFStatement& statement);

}  // namespace VellumLib
