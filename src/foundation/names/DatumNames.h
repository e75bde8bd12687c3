#pragma once

#include <cstddef>
#include <string_view>

namespace Tellurion {

/// The names of one geodetic system in the headers of charts, frames and images.
struct DatumNames {
    int epsg;
    const char* names;  ///< upper-case letters and digits, parted by '|'
};

/// All of them; `count` is set to how many there are.
const DatumNames* GetDatumNames(std::size_t& count);

/// The EPSG number of the geodetic system that a name stands for, whatever its case,
/// blanks and punctuation; 0 for an unknown one.
int FindDatumByName(std::string_view name);

}  // namespace Tellurion
