#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string>

namespace VellumLib {

/// A datum of the LGIDict dialect: a short code, and the EPSG code of the geographic
/// system that stands for it.
struct CLGIDatum {
    std::string Name;  ///< for people; not used
    std::int32_t EPSG = 0;
    std::string Code;
};

/// A row of the datum table as it is written down.
struct LGIDatumRow {
    const char* code;
    std::int32_t epsg;
    const char* name;
};

/// By code, exact and case-sensitive.
using LGIDatumMap = std::map<std::string, CLGIDatum, std::less<>>;

std::span<const LGIDatumRow> LGIDatumRows();
const LGIDatumMap& LGIDatums();

}  // namespace VellumLib
