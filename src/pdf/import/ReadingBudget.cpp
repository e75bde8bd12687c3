#include "import/ReadingBudget.h"

#include <podofo/podofo.h>

#include <algorithm>
#include <limits>

namespace VellumLib {

void ReadingBudget::Take(int count) {
    const auto wanted = static_cast<std::size_t>(count < 0 ? 0 : count);
    if (wanted > left_)
        PODOFO_RAISE_ERROR_INFO(PoDoFo::ePdfError_ValueOutOfRange,
                                "The maps of the page hold more numbers than any map needs.");
    left_ -= wanted;
}

void ReadingBudget::TakeText(std::size_t bytes) {
    constexpr std::size_t kBytesOfAValue = 4;
    Take(static_cast<int>(std::min<std::size_t>(bytes / kBytesOfAValue, std::numeric_limits<int>::max())));
}

}  // namespace VellumLib
