#pragma once

#include <Tellurion/Export.h>

#include <string>
#include <string_view>

namespace Tellurion {

/// The first file that a coordinate system names by a path, such as "/tmp/shift.gsb" of
/// EXTENSION["PROJ4_GRIDS","/tmp/shift.gsb"] or of "+nadgrids=/tmp/shift.gsb"; empty when
/// there is none. PROJ would open it, whoever wrote the text. A grid named without a folder,
/// such as "ntv2_0.gsb" or "@null", is one of PROJ's own data and does not count.
///
/// `text` is well-known text of any version, a PROJ string or PROJJSON, as it is, in XML, or
/// among the bytes of another file.
TELLURION_EXPORT std::string FileNamedIn(std::string_view text);

}  // namespace Tellurion
