#pragma once

#include <MapAnchor/Export.h>
#include <Tellurion/BString.h>

namespace MapAnchor {

/// What GDAL may do with the files that it reads for this library.
///
/// GDAL goes by a file's content: a text that is named "map.tif" can be a request to a web
/// server, a database or a list of other files. The library therefore lets only those of
/// GDAL's drivers read that open the named file and files of the same name beside it, by name
/// only those that the extension can mean, and shows them no other file. Drivers that a host
/// has put into its process itself are the host's word and read as well.
class MAPANCHOR_EXPORT BGdalAccess {
public:
    /// Lets further drivers read, for the whole process and in place of those named before:
    /// GDAL's short names, such as "VRT" or "netCDF,GRIB", with commas or blanks between them.
    /// They are asked after the others, and go wherever the file sends them. Throws a
    /// BReadParametersException for a name that GDAL does not know. For one read by type
    /// there is BMapAnchor::kValGdalDrivers.
    static void SetDrivers(const Tellurion::BString& names);
    static Tellurion::BString GetDrivers();  ///< as set, with commas

    /// The size in pixels of a raster that a driver can read, whatever its extension. False,
    /// with nothing changed, for any other file.
    static bool GetRasterSize(const Tellurion::BString& file, long& width, long& height);
};

}  // namespace MapAnchor
