#pragma once

#include <string>

namespace VellumLib {

/// The number at the front of a projection parameter, by the rules of a stream; 0
/// when there is none or it does not fit.
double LGIReal(const std::string& text);
int LGIInteger(const std::string& text);

}  // namespace VellumLib
