#pragma once

#include <Tellurion/AffineTerms.h>

namespace MapAnchor {

using Tellurion::AffineTerms;  // x and y are a column and a row

}  // namespace MapAnchor
