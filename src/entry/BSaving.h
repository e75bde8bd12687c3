#pragma once

#include <MapAnchor/BDiagnostic.h>
#include <MapAnchor/BSavingOptions.h>
#include <MapAnchor/BSavingProof.h>
#include <MapAnchor/Export.h>
#include <Tellurion/BGeoReference.h>
#include <Tellurion/BString.h>

#include <memory>
#include <vector>

namespace MapAnchor {

/// A save that was checked before and read back after it. A value that is cheap to copy.
///
///     BSavingOptions options;
///     options.SetSize(4000, 3000);
///     const BSaving saving = BSaving::Of("map.tif", reference, options);
///     Show(saving.GetProof().GetText());
///
/// The references that are saved begin at the outer corner of the top left pixel, unless the
/// options say that they begin at its centre.
class MAPANCHOR_EXPORT BSaving {
public:
    /// Saves as BMapAnchor::Save does, by type where the options have one, and reads the file
    /// back. Throws what BMapAnchor::Save throws; the file is then what it was. A file whose
    /// proof fails stays, unless the options require an exact save: then it is taken back, and
    /// IsTakenBack() says so.
    static BSaving Of(const Tellurion::BString& file, const Tellurion::BGeoReference& reference,
                      const BSavingOptions& options = BSavingOptions());

    /// What the kind of `file` cannot hold of the reference, by the ids of docs/diagnostics.md
    /// that begin with "lost-", and what its save lacks. Touches no file.
    static std::vector<BDiagnostic> FindLosses(const Tellurion::BString& file,
                                               const Tellurion::BGeoReference& reference,
                                               const BSavingOptions& options = BSavingOptions());

    /// What it costs that the kind of `file` saves control points with whole pixels: how far the
    /// fit through them is from that of the reference, in pixels, at most, at the points and the
    /// corners. 0 where nothing is rounded, not a number where it is not known.
    static double FindRounding(const Tellurion::BString& file, const Tellurion::BGeoReference& reference,
                               const BSavingOptions& options = BSavingOptions());

    /// Reads `file` back by its own reader and, where GDAL has a driver for its kind, by GDAL,
    /// and compares with `reference`. Nothing throws for the file's sake.
    static BSavingProof Verify(const Tellurion::BString& file, const Tellurion::BGeoReference& reference,
                               const BSavingOptions& options = BSavingOptions());

    /// The reference that begins at the outer corner of the top left pixel, for one that begins
    /// at its centre. Control points are whole pixels: they keep their numbers, and their
    /// positions move along the transform.
    static Tellurion::BGeoReference FromCentre(const Tellurion::BGeoReference& reference);

    BSaving(const BSaving&);
    BSaving& operator=(const BSaving&);
    ~BSaving();

    bool IsTakenBack() const;              ///< the proof failed, and the old file is there again
    const BSavingProof& GetProof() const;  ///< nothing read where the save was not verified
    /// The losses, what writers logged, and those of the proof, in this order.
    const std::vector<BDiagnostic>& GetDiagnostics() const;

private:
    struct State;
    explicit BSaving(std::shared_ptr<const State> state);

    std::shared_ptr<const State> state_;
};

}  // namespace MapAnchor
