#pragma once

#include "import/ReadingBudget.h"
#include "objects/CPDFArray.h"
#include "objects/CPDFObject.h"

namespace VellumLib {

/// The element of that index; a PdfError past the end of the array.
CPDFObject ElementAt(const CPDFArray& array, int index);

/// The decimal number in a string element. Text that is none counts as 0, and so do
/// "inf" and "nan", which are no decimal numbers. A PdfError for an element that is no string.
double NumberInString(const CPDFArray& array, int index, ReadingBudget& budget);

}  // namespace VellumLib
