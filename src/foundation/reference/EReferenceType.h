#pragma once

namespace Tellurion {

/// The kinds of reference that can be read or saved by type.
enum class EReferenceType : int {
    GeoTIFF = 1,
    TAB = 2,
    RSF = 3,
    WLD = 4,
    MrSID = 5,
    ECW = 6,
    ERS = 7,
    Reserved = 8,  ///< never read; saving does nothing
    DOQQ = 9,
    KAP = 10,
    GeoPDF = 11,
    Points = 201,  ///< the table of control points of QGIS's georeferencer
    AuxXml = 202,  ///< the auxiliary file of GDAL, ".aux.xml"
    Vrt = 203,     ///< a virtual raster of GDAL that places another raster; saved alone
    Kml = 204,     ///< a ground overlay of KML
};

}  // namespace Tellurion
