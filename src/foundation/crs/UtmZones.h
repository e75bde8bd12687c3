#pragma once

#include <string_view>

namespace Tellurion {

/// The EPSG number of a zone of UTM on a datum whose zones EPSG numbers one by one; 0 for others. Most
/// files are in such a zone, and to look for a system by its name or its projection costs the database
/// more than all the rest of a read. What it answers is still to be compared with the system itself.
int EpsgOfUtmZone(std::string_view datum, int zone, char hemisphere);

/// The EPSG number of such a zone, or of another system that many files are in, by the name that ESRI
/// gives it, such as "WGS_1984_UTM_Zone_32N"; 0 for others.
int EpsgOfEsriName(std::string_view name);

}  // namespace Tellurion
