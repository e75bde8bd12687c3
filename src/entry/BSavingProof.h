#pragma once

#include <MapAnchor/BDiagnostic.h>
#include <MapAnchor/Export.h>
#include <Tellurion/BString.h>

#include <memory>
#include <vector>

namespace MapAnchor {

/// What reading a file back after a save shows, compared with the reference that was meant. A
/// value that is cheap to copy.
///
/// Pixels are those of the raster, with column 0, row 0 at the outer corner of the top left
/// one; they are compared at the raster's corners, at its centre and at each control point.
class MAPANCHOR_EXPORT BSavingProof {
public:
    BSavingProof();  ///< of a file that was not read back
    BSavingProof(const BSavingProof&);
    BSavingProof& operator=(const BSavingProof&);
    ~BSavingProof();

    bool IsRead() const;  ///< the file was read back
    /// It was read back, and nothing that its kind holds differs by more than the tolerance.
    bool IsExact() const;
    /// GDAL read the file by its own driver, and agreed as well.
    bool IsConfirmedByGdal() const;

    /// The largest distance found; not a number where nothing could be compared.
    double GetPixels() const;
    /// The same on the ground; not a number without a coordinate system.
    double GetMetres() const;
    /// Both have a coordinate system that puts positions at the same places within a millimetre,
    /// and has the same EPSG code where both have one; or nothing of it was to be saved.
    bool IsSameSystem() const;
    /// How far apart the two systems put one position, in metres; not a number where that is
    /// not known.
    double GetSystemMetres() const;

    /// One sentence, such as "read back: at most 0.000 pixels, 0.000 m; the same system".
    Tellurion::BString GetText() const;
    /// What differs, by the ids of docs/diagnostics.md that begin with "saved-".
    const std::vector<BDiagnostic>& GetDiagnostics() const;

    /// For the library's own use.
    struct Parts;
    explicit BSavingProof(std::shared_ptr<const Parts> parts);  ///< for the library's own use

private:
    std::shared_ptr<const Parts> parts_;
};

}  // namespace MapAnchor
