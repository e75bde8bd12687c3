#include "import/ArrayAccess.h"

#include "objects/CPDFString.h"

#include <podofo/podofo.h>

#include <cmath>

namespace VellumLib {

CPDFObject ElementAt(const CPDFArray& array, int index) {
    if (index < 0 || index >= array.GetSize())
        PODOFO_RAISE_ERROR_INFO(PoDoFo::ePdfError_ValueOutOfRange, "An array ends before its values do.");
    return array[index];
}

double NumberInString(const CPDFArray& array, int index, ReadingBudget& budget) {
    const QString text = ElementAt(array, index).GetString().ToQString();
    budget.TakeText(static_cast<std::size_t>(text.size()));
    bool parsed = false;
    const double value = text.toDouble(&parsed);
    return parsed && std::isfinite(value) ? value : 0.0;
}

}  // namespace VellumLib
