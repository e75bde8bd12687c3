#pragma once

#include "load/LoadBudget.h"

#include <string>

namespace PoDoFo {
class PdfDictionary;
}

namespace VellumLib {

/// Charges to the budget what the objects of a decoded object stream will cost:
/// how many there are, how they nest, how often their bytes are read. A stream
/// without "N" has none.
void InspectObjectStream(const PoDoFo::PdfDictionary& dictionary, const std::string& content,
                         LoadBudget& budget);

}  // namespace VellumLib
