#pragma once

#include "common/storing/Affine.h"

#include <Tellurion/BFile.h>

#include <array>

namespace MapAnchor {

/// The six numbers of a world file, in file order: pixel size in x, change of y per
/// column, change of x per row, pixel size in y, then x and y of the centre of the
/// top left pixel.
struct WorldFile {
    std::array<double, 6> line{};
    int lines_read = 0;

    bool IsComplete() const { return lines_read == 6; }

    /// The affine from the outer corner of the top left pixel. The shift is half of
    /// the pixel sizes alone; the rotation terms do not enter it, in neither
    /// direction, so that reading and writing are exact inverses.
    AffineTerms ToAffine() const;
    static WorldFile FromAffine(const AffineTerms& terms);
};

/// Reads up to six lines. A line without a number counts as 0, what follows a
/// number is ignored, lines behind the sixth are not read.
WorldFile ParseWorldFile(Tellurion::BFile& file);

/// The six lines as text, with twelve decimals.
Tellurion::BString FormatWorldFile(const WorldFile& world_file);

}  // namespace MapAnchor
