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
/// Failures are exceptions of the Tellurion::BException family. Calls on different
/// files and records may run in different threads.
class MAPANCHOR_EXPORT BMapAnchor {
public:
    /// Keys of a BParamList: the page box of a PDF that the raster shows (a whole
    /// number), and the resolution of a PDF to write (dots per inch, default 72).
    static const Tellurion::BString kValPDFCropType;
    static const Tellurion::BString kValPDFResolution;

    static constexpr unsigned int kStrictTransform = 1;
    static constexpr unsigned int kStrictCoordSys = 2;

    /// Reads `file` as the kind `type`. `reference` is assigned at the end: a
    /// failure leaves it as it was. `params` may be null.
    static void Read(const Tellurion::EReferenceType& type, const Tellurion::BString& file,
                     Tellurion::BGeoReference& reference, long width, long height,
                     Tellurion::EMathTransformType mathType, unsigned int flags,
                     const Tellurion::BParamList* params);

    /// Reads `file` by its extension; an unknown extension goes through a short
    /// chain of readers that look at the content. `usedFile` becomes the file that
    /// was actually read. A failure can leave `reference` partly filled. A world
    /// file brings the coordinate system of the prj file beside it.
    static void Read(const Tellurion::BString& file, Tellurion::BGeoReference& reference,
                     Tellurion::BString& usedFile, long width, long height,
                     Tellurion::EMathTransformType mathType, const Tellurion::BParamList* params);

    /// Saves as the kind `type`. `imageName` is the raster's file name, which some
    /// kinds write down. The type Reserved and numbers that are no type do nothing.
    static void Save(const Tellurion::EReferenceType& type, const Tellurion::BString& file,
                     const Tellurion::BGeoReference& reference, long width, long height,
                     const Tellurion::BString& imageName, unsigned int flags,
                     const Tellurion::BParamList* params);

    /// Saves as the kind that the file's extension names. A world file takes a prj
    /// file beside it when the reference has a coordinate system.
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
