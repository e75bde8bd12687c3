#pragma once

#include <Tellurion/BGeoReference.h>
#include <Tellurion/BParamList.h>
#include <Tellurion/BString.h>

namespace MapAnchor {

struct ReferenceFormat;

/// ER Mapper ERS headers: cell sizes, a registered position, and a coordinate system by
/// ER Mapper's names of its datum and projection. They know no rotation and hold no
/// control points. Cell sizes are in metres, or degrees; the position is in the
/// system's unit. The overloads without flags answer by bool; those with flags report
/// by exception.
class BRefERS {
public:
    /// True for a header whose end was seen, even one that places nothing.
    static bool Read(const Tellurion::BString& file, Tellurion::BGeoReference& reference);
    static void Read(const Tellurion::BString& file, const unsigned int& flags,
                     Tellurion::BGeoReference& reference);

    /// Writes the header of a raster of `width` by `height` pixels in the file
    /// `imageName`. A system that has an ER Mapper name of its own is written without
    /// names here, and only such a system with names by the overload with flags. With
    /// kCodesKey in `params`, names that would be read back as another place are not written
    /// in either; the overload with flags then writes the EPSG code for both names.
    static bool Write(const Tellurion::BString& file, const Tellurion::BGeoReference& reference, long width,
                      long height, const Tellurion::BString& imageName,
                      const Tellurion::BParamList* params = nullptr);
    static void Write(const Tellurion::BString& file, const unsigned int& flags,
                      const Tellurion::BGeoReference& reference, long width, long height,
                      const Tellurion::BString& imageName, const Tellurion::BParamList* params = nullptr);

    static constexpr const char* kCodesKey = "MAP_ANCHOR_ERS_CODES";

    static ReferenceFormat Format();
};

}  // namespace MapAnchor
