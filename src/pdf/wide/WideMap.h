#pragma once

#include "import/CMeasureDictionaryData.h"
#include "wide/WidePages.h"
#include "wide/WideRemarks.h"
#include "wide/WideValue.h"

#include <string>
#include <vector>

namespace VellumLib {

/// One map of a page, in either dialect.
struct WideMap {
    bool lgi = false;       ///< an entry of "LGIDict"; else one of "VP"
    std::size_t entry = 0;  ///< its index there
    std::string name;       ///< may be empty
    double area = 0.0;      ///< on the page, in square points
    CMeasureDictionaryData record;
    /// The positions of `record` are in the unit and from the meridian of the system's own
    /// geographic base; of two dialects only that of viewports has such.
    std::string fault;  ///< why it cannot be read; usually empty
    WideRemarks remarks;
    std::vector<WideOrigin> origins;
};

/// The maps of the page's "VP", in the order of the file. A fault is that map's own.
std::vector<WideMap> ReadViewports(const WidePage& page);
/// The same of its "LGIDict".
std::vector<WideMap> ReadLGIDicts(const WidePage& page);

/// More maps than these on a page are not read.
constexpr std::size_t kMaxMaps = 1000;

}  // namespace VellumLib
