#pragma once

#include <MapAnchor/Export.h>
#include <Tellurion/BGeoReference.h>
#include <Tellurion/BParamList.h>
#include <Tellurion/BString.h>
#include <Tellurion/EMathTransformType.h>
#include <Tellurion/EReferenceType.h>

namespace MapAnchor {

class BReferenceFormats;

/// The one door of the library: reads and saves the georeferencing of a raster or
/// map by the kind that the caller names, or by the file's name alone.
///
/// `width` and `height` are the raster's size in pixels; `mathType` is the fit to
/// make through control points that are read. `flags` holds kStrictTransform and
/// kStrictCoordSys: with a bit set, that part failing is an exception; with it
/// clear, the part stays unset, the failure is logged and the read goes on.
///
/// Failures are exceptions of the Tellurion::BException family, but for one: what PoDoFo
/// makes of a PDF leaves as its PoDoFo::PdfError, which is no std::exception. Calls on
/// different files and records may run in different threads.
///
/// Affines that are read begin at the outer corner of the top left pixel, but for the
/// kinds that BReferenceFormat::IsCentreAnchored() names; saving takes them likewise.
class MAPANCHOR_EXPORT BMapAnchor {
public:
    /// Key of a BParamList: the box of a PDF page that the raster shows, a whole number.
    /// 0 is the art box, 3 the bleed box, 4 the crop box; 2, the trim box, and 5 both mean
    /// the media box, which is the default and replaces a box that is not there. 1, the
    /// bounding box, is refused with a BReadParametersException.
    static const Tellurion::BString kValPDFCropType;
    /// Key of a BParamList: the resolution of a raster whose PDF is saved, in dots per
    /// inch; 72 without it.
    static const Tellurion::BString kValPDFResolution;
    /// Key of a BParamList: further drivers of GDAL that may read, by their short names with
    /// commas between them; for reads by type. See BGdalAccess, which also says why GDAL's
    /// drivers are not all allowed, and serves reads by name.
    static const Tellurion::BString kValGdalDrivers;

    /// Key of a BParamList, a whole number: when it is not 0, an ERS header is saved with
    /// names of a system only where they are read back as the same place. By type it gets the
    /// EPSG code, such as "EPSG:2056", in place of names that are missing or mean another system.
    static const Tellurion::BString kValErsCodes;

    /// Key of a BParamList, a whole number: when it is not 0, a GeoTIFF that is saved with a
    /// transform or points and without a coordinate system loses the system that it had. Without
    /// it the file keeps that system under the new transform.
    static const Tellurion::BString kValReplaceSystem;

    /// Key of a BParamList, a whole number: when it is not 0, a PDF is read beyond the rules of
    /// this kind. References, numbers, datums and boxes then count in every form that other
    /// software writes, and the transform goes through the exact places of the control points.
    /// Each rule that the file does not follow is logged as a warning that begins with
    /// "pdf-beyond-rules: ". A width and height of 0 mean the page at 72 dpi.
    /// A save georeferences the page that kValPDFPage names, and the page loses its older maps
    /// of every kind. The file stays as it was when a save fails. What writing the whole file
    /// breaks, such as a signature, is logged as a warning before.
    static const Tellurion::BString kValPDFWide;
    /// Key of a BParamList, for a read or save beyond the rules: the page, counted from 1, the
    /// default.
    static const Tellurion::BString kValPDFPage;
    /// Key of a BParamList, for a read beyond the rules: the map of the page, by its name, by
    /// its number from 1 in the order of BGeoPDFPages, "largest" or "last". The default is the map
    /// that a read by the rules takes, or the largest where the rules refuse the file.
    static const Tellurion::BString kValPDFMap;
    /// Key of a BParamList, for a read beyond the rules: when it is not 0, the raster shows the
    /// page as viewers draw it, turned by its rotation and cut to its crop box.
    static const Tellurion::BString kValPDFShown;
    /// Key of a BParamList, for a read beyond the rules: the password of a PDF whose first page
    /// is read. Without it the empty one is tried. Files of AES-256 alone are read.
    static const Tellurion::BString kValPDFPassword;

    /// Key of a BParamList, a whole number: 1 saves a PDF by an incremental update, which appends
    /// what is new and changed, and leaves every byte that is in the file; 2 does so where
    /// BGeoPDFTraits finds it the better way. Both mean a save beyond the rules; 0, the default,
    /// writes the whole file.
    static const Tellurion::BString kValPDFIncremental;
    /// Key of a BParamList, for a save beyond the rules: when it is not 0, a system that ESRI's
    /// well-known text cannot describe is written in version 2 of 2019, which few readers of PDF
    /// know. Without it the save is refused.
    static const Tellurion::BString kValPDFWkt2;
    /// Key of a BParamList, for a save beyond the rules: the part of the page that the map covers, as
    /// "left bottom right top" in points of 1/72 inch from the lower left corner of the media box. The
    /// reference stays that of the raster, and has to be an affine transform. Without it the map covers
    /// the raster.
    static const Tellurion::BString kValPDFFrame;
    /// Key of a BParamList, for a save beyond the rules: when it is not 0, the page keeps the maps that it
    /// has, and this one comes after them. Always an incremental update; refused for a page with an
    /// LGIDict, beside which readers see no other map.
    static const Tellurion::BString kValPDFAdd;
    /// Key of a BParamList, for a save beyond the rules: the name of the map, "AllLayers" without it.
    static const Tellurion::BString kValPDFMapName;

    /// Keys of a BParamList, for a save of QGIS's table of points: how the table that the points came from
    /// names the system, which counts where it is the one of the reference; and, when it is not 0, that
    /// the columns are named pixelX and pixelY as in older tables.
    static const Tellurion::BString kValPointsSystem;
    static const Tellurion::BString kValPointsOldHeader;  ///< see kValPointsSystem

    static constexpr unsigned int kStrictTransform = 1;  ///< of `flags`: insist on the transform
    static constexpr unsigned int kStrictCoordSys = 2;   ///< of `flags`: insist on the system

    /// Reads `file` as the kind `type`. `reference` is assigned at the end: a
    /// failure leaves it as it was. `params` may be null.
    ///
    /// Throws a BFileNotFoundException without a file, a BUnsupportedFileTypeException for
    /// a type that is not read, and otherwise what the kind makes of the file: mostly
    /// BGeoReferenceReadException, BGeoReferenceInvalidReferenceFileException,
    /// BGeoReferenceInvalidTransformException or BGeoReferenceInvalidCoordSysException. A
    /// BReadParametersException rejects a parameter.
    static void Read(const Tellurion::EReferenceType& type, const Tellurion::BString& file,
                     Tellurion::BGeoReference& reference, long width, long height,
                     Tellurion::EMathTransformType mathType, unsigned int flags,
                     const Tellurion::BParamList* params);

    /// Reads `file` by its extension; an unknown extension goes through a short
    /// chain of readers that look at the content. `usedFile` becomes the file that
    /// was actually read. A failure can leave `reference` partly filled. A world
    /// file brings the coordinate system of the prj file beside it.
    ///
    /// Throws a BFileNotFoundException for a name that is empty or has no extension, a
    /// BUnsupportedFileTypeException when no reader takes the file, and a
    /// BFileContentNotValidException when one does and finds nothing.
    static void Read(const Tellurion::BString& file, Tellurion::BGeoReference& reference,
                     Tellurion::BString& usedFile, long width, long height,
                     Tellurion::EMathTransformType mathType, const Tellurion::BParamList* params);

    /// Saves as the kind `type`. `imageName` is the raster's file name, which some
    /// kinds write down. The type Reserved and numbers that are no type do nothing.
    ///
    /// Throws a BGeoReferenceNotSupportedException for kinds that are only read, a
    /// BGeoReferenceWriteException when the file cannot be written to its end, and what
    /// the kind makes of a reference that it cannot hold.
    static void Save(const Tellurion::EReferenceType& type, const Tellurion::BString& file,
                     const Tellurion::BGeoReference& reference, long width, long height,
                     const Tellurion::BString& imageName, unsigned int flags,
                     const Tellurion::BParamList* params);

    /// Saves as the kind that the file's extension names. A world file takes a prj
    /// file beside it when the reference has a coordinate system. Throws a
    /// BUnsupportedFileTypeException for an extension that is not saved, or when the kind
    /// cannot hold the reference, and a BGeoReferenceWriteException as above.
    static void Save(const Tellurion::BString& file, const Tellurion::BGeoReference& reference, long width,
                     long height, const Tellurion::BString& imageName, const Tellurion::BParamList* params);

    /// The world file extension, without a dot, that belongs to a raster of this
    /// name, with its dot where the raster's has one: ".tif" gives ".tfw".
    static Tellurion::BString GenerateWorldFileExt(const Tellurion::BString& file);

private:
    friend class BReferenceFormats;

    /// Reads by name and answers the name of the kind that did.
    static const char* ReadAndName(const Tellurion::BString& file, Tellurion::BGeoReference& reference,
                                   Tellurion::BString& usedFile, long width, long height,
                                   Tellurion::EMathTransformType mathType,
                                   const Tellurion::BParamList* params);
    /// The name of the kind that answered; null when none did.
    static const char* TryOpeningForRead(const Tellurion::BString& file, Tellurion::BGeoReference& reference,
                                         Tellurion::BString& usedFile, long width, long height,
                                         Tellurion::EMathTransformType mathType);
};

}  // namespace MapAnchor
