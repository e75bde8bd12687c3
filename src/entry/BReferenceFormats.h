#pragma once

#include <MapAnchor/Export.h>
#include <Tellurion/BGeoReference.h>
#include <Tellurion/BParamList.h>
#include <Tellurion/BString.h>
#include <Tellurion/EMathTransformType.h>
#include <Tellurion/EReferenceType.h>

#include <vector>

namespace MapAnchor {

/// One kind of reference as this build knows it.
struct MAPANCHOR_EXPORT BReferenceFormat {
    Tellurion::BString Name;   ///< short name, such as "WLD"
    Tellurion::BString Title;  ///< what people call it, such as "World file"
    Tellurion::EReferenceType Type = Tellurion::EReferenceType::Reserved;  ///< for Read and Save
    bool HasType = false;      ///< false for a kind that only probing reaches; Type means nothing then
    bool ReadsByType = false;  ///< BMapAnchor::Read takes the Type
    bool SavesByType = false;  ///< BMapAnchor::Save takes the Type
    std::vector<Tellurion::BString> ReadExtensions;  ///< lower case, with the dot
    std::vector<Tellurion::BString> SaveExtensions;  ///< the same for saving
    bool CentreAnchored =
        false;  ///< column 0, row 0 of its affine is the centre of the top left pixel, not its corner
    Tellurion::BString ServedBy;  ///< the reader, for kinds that another could serve; usually empty
    bool Probed = false;          ///< tried on files of unknown extension
    Tellurion::BString Missing;   ///< an optional driver that this build lacks; usually empty
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
