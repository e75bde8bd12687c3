#pragma once

#include <cstddef>

namespace VellumLib {

/// Bounds what one import reads. A file is small that names one long array a thousand
/// times; without a bound its import would not be.
class ReadingBudget {
public:
    /// A PdfError when `count` more values are too many.
    void Take(int count);
    /// The same for a text of so many bytes, which costs less than as many values.
    void TakeText(std::size_t bytes);

private:
    std::size_t left_ = std::size_t{1} << 22;
};

}  // namespace VellumLib
