#pragma once

#include <MapAnchor/Export.h>
#include <Tellurion/BGeoReference.h>
#include <Tellurion/BParamList.h>
#include <Tellurion/BString.h>
#include <Tellurion/EMathTransformType.h>
#include <Tellurion/EReferenceType.h>

#include <vector>

namespace MapAnchor {

struct ReferenceFormat;

/// One kind of reference as this build knows it. A value that is cheap to copy and lives as
/// long as the library is loaded.
class MAPANCHOR_EXPORT BReferenceFormat {
public:
    Tellurion::BString GetName() const;         ///< short name, such as "WLD"
    Tellurion::BString GetTitle() const;        ///< what people call it, such as "World file"
    bool HasType() const;                       ///< false for a kind that has no number of its own
    Tellurion::EReferenceType GetType() const;  ///< for Read and Save; means nothing without HasType()

    bool ReadsByType() const;                                   ///< BMapAnchor::Read takes the type
    bool SavesByType() const;                                   ///< BMapAnchor::Save takes the type
    std::vector<Tellurion::BString> GetReadExtensions() const;  ///< lower case, with the dot
    std::vector<Tellurion::BString> GetSaveExtensions() const;  ///< the same for saving
    /// Name this kind to people, though only Read and Save by type take them, such as ".pdf".
    std::vector<Tellurion::BString> GetTypedExtensions() const;
    /// The file's name ends with one of them, in any case of letters.
    bool IsNamedByType(const Tellurion::BString& file) const;
    bool IsProbed() const;  ///< tried on files of unknown extension
    Tellurion::BString GetServedBy()
        const;                              ///< the reader, for kinds that another could serve; usually empty
    Tellurion::BString GetMissing() const;  ///< an optional driver that this build lacks; usually empty

    /// Column 0, row 0 of its affine is the centre of the top left pixel, not its corner.
    bool IsCentreAnchored() const;
    bool IsSidecar() const;     ///< a file beside a raster, without pixels
    bool SavesInPlace() const;  ///< a save changes an existing file and leaves its pixels alone

    /// What a save keeps of a reference. `byType` is false for a save by name; the two differ
    /// for world files, whose prj file is written by name alone, and for the vertical unit of
    /// a GeoTIFF.
    bool HoldsCoordSys(bool byType) const;
    bool HoldsVerticalUnit(bool byType) const;  ///< as above
    bool HoldsRotation() const;                 ///< an affine whose axes are turned or sheared
    bool HoldsPoints() const;                   ///< control points, and so a transform beyond affine
    bool HoldsDisabledPoints() const;           ///< with the mark that they are disabled

    /// Coordinate systems are saved by names or numbers of the kind's own, which some systems lack.
    bool HasOwnSystemNames() const;

    /// What a save wants.
    bool NeedsCoordSys() const;     ///< without one a default is written
    bool NeedsRasterSize() const;   ///< in pixels, for a transform without points, which becomes the corners
    bool StatesRasterSize() const;  ///< the raster's size is written, 0 by 0 where it is not given
    bool NamesRaster() const;       ///< the raster's name is written

private:
    friend class BReferenceFormats;
    explicit BReferenceFormat(const ReferenceFormat& row) : row_(&row) {}

    const ReferenceFormat* row_;
};

/// What this build can read and save; the front door works from the same table.
class MAPANCHOR_EXPORT BReferenceFormats {
public:
    static std::vector<BReferenceFormat> List();  ///< all kinds, in a fixed order

    /// As BMapAnchor::Read by name, and answers the Name of the kind that was read. An
    /// extension alone does not tell it: behind an unknown one the content decides.
    static Tellurion::BString Read(const Tellurion::BString& file, Tellurion::BGeoReference& reference,
                                   Tellurion::BString& usedFile, long width, long height,
                                   Tellurion::EMathTransformType mathType,
                                   const Tellurion::BParamList* params);
};

}  // namespace MapAnchor
