#pragma once

#include <MapAnchor/Export.h>
#include <Tellurion/BControlPoint.h>
#include <Tellurion/BString.h>

#include <vector>

namespace MapAnchor {

/// A file of control points. What it is shows in its content:
///
/// | format | what it is |
/// |---|---|
/// | Points | the table of QGIS's georeferencer: mapX, mapY, sourceX, sourceY (older: pixelX, pixelY),
/// enable, dX, dY, residual, with a line "#CRS:" before it; rows are negative | | Table | CSV or TSV, columns
/// by their names such as pixel, line, lon, lat, or by an order that the caller gives; separated by tabs,
/// semicolons or commas; decimal commas but where commas separate | | GeoJson | point features whose
/// properties name the pixel | | Iiif | a georeference annotation: features with resource coordinates | |
/// Gcps | options "-gcp pixel line x y [z]" of GDAL's programs, with "-a_srs" | | Vrt | the GCPList of a VRT
/// file or of an auxiliary file | | Reference | what BMapAnchor reads by name and has points: RSF, TAB,
/// GeoTIFF ... |
class MAPANCHOR_EXPORT BControlPointFile {
public:
    /// How points are written in a file; see above.
    enum class EFormat : int { Points, Table, GeoJson, Iiif, Gcps, Vrt, Reference };

    /// Reads a file of at most 64 MiB. `order` names the columns of a table without a header,
    /// such as "pixel,line,x,y,name"; "-" skips one. A failure is a
    /// BGeoReferenceInvalidReferenceFileException that names line and column, a
    /// BFileNotFoundException or a BFileAccessException.
    static BControlPointFile Read(const Tellurion::BString& file,
                                  const Tellurion::BString& order = Tellurion::BString());
    /// As above; `coordSys`, unless it is empty, is the system of the positions whatever the file states,
    /// so that no system is guessed.
    static BControlPointFile Read(const Tellurion::BString& file, const Tellurion::BString& order,
                                  const Tellurion::BString& coordSys);
    /// The format by which Write() saves under that name: .points, .csv and .tsv, .geojson and
    /// .json, .gcps. False for other names.
    static bool FormatForName(const Tellurion::BString& file, EFormat& format);
    /// Saves the points by the file's name, in one step; every number reads back as the same
    /// double. Throws a BUnsupportedFileTypeException for a name that is not among those of
    /// FormatForName(), and a BGeoReferenceWriteException. A .points file holds neither names nor
    /// heights, options (.gcps) neither names nor disabled points.
    void Write(const Tellurion::BString& file) const;

    std::vector<Tellurion::BControlPoint> Points;  ///< rows count downwards from the top edge
    /// The system of the points' positions, as BCoordSys::FromText takes it; empty when the
    /// file states none.
    Tellurion::BString CoordSys;
    long Width = 0;                            ///< of the raster, where the file states it
    long Height = 0;                           ///< as Width
    EFormat Format = EFormat::Points;          ///< what the file was
    bool OldHeader = false;                    ///< Points: the columns are pixelX, pixelY
    std::vector<Tellurion::BString> Warnings;  ///< what was guessed or left out
};

}  // namespace MapAnchor
