#pragma once

#include <string_view>

namespace Tellurion {

/// True for a well-known text 1 that means EPSG:3857, in any of the spellings in use: by the
/// projection Mercator_Auxiliary_Sphere, an ellipsoid that is called the auxiliary sphere,
/// or a plain Mercator projection under one of the names of Web Mercator. How PROJ reads
/// these differs from version to version, by up to 40 km.
bool IsWebMercatorText(std::string_view text);

/// The name in a well-known text 1 of another system that has one of the names of Web
/// Mercator: PROJ would go by the name and not by the numbers. Empty for any other text.
std::string_view MisleadingName(std::string_view text);

}  // namespace Tellurion
