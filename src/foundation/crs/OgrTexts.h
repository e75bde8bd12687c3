#pragma once

#include <string>
#include <vector>

/// Texts that OGR translates and PROJ does not. Nothing reaches stderr, and the
/// host's own last error of GDAL stays.
namespace Tellurion {

/// Well-known text 2 of a PRJ file's lines in the form of Arc/Info; empty when they
/// say no system.
std::string WktOfArcInfo(const std::vector<std::string>& lines);

/// Well-known text 2 of an entry in the dictionary of ER Mapper names that GDAL's data
/// folder may have; empty without one.
std::string WktOfErMapperName(const std::string& name);

/// Makes GDAL's own PROJ context of this thread; false where no GDAL is loaded.
bool MakeProjContextOfGdal();

}  // namespace Tellurion
