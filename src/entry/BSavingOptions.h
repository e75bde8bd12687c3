#pragma once

#include <MapAnchor/Export.h>
#include <Tellurion/BControlPoint.h>
#include <Tellurion/BParamList.h>
#include <Tellurion/BString.h>
#include <Tellurion/EReferenceType.h>

#include <memory>
#include <vector>

namespace MapAnchor {

/// How BSaving is to save and to compare. As constructed it saves by the file's name and
/// compares within a thousandth of a pixel and one millimetre. A copy is cheap, and setting
/// one leaves the other as it is.
class MAPANCHOR_EXPORT BSavingOptions {
public:
    BSavingOptions();
    BSavingOptions(const BSavingOptions&);
    BSavingOptions& operator=(const BSavingOptions&);
    ~BSavingOptions();

    /// Saves as this kind, by type, whatever the file's name says.
    void SetType(Tellurion::EReferenceType type);
    bool HasType() const;                       ///< SetType() was called
    Tellurion::EReferenceType GetType() const;  ///< means nothing without HasType()

    /// BMapAnchor::kStrictTransform and kStrictCoordSys, for saves by type.
    void SetFlags(unsigned int flags);
    unsigned int GetFlags() const;  ///< 0 until set

    void SetSize(long width, long height);  ///< of the raster in pixels; 0 for unknown
    long GetWidth() const;                  ///< 0 when it was not set
    long GetHeight() const;                 ///< 0 when it was not set

    /// The raster's file name, which some kinds write down.
    void SetImageName(const Tellurion::BString& name);
    Tellurion::BString GetImageName() const;  ///< empty until set

    /// Column 0, row 0 of the reference is the centre of the top left pixel, as
    /// BReading::IsCentreAnchored() says; the save shifts it to the corner.
    void SetCentreAnchored(bool centre);
    bool IsCentreAnchored() const;  ///< false until set

    /// What a save takes by key, see BMapAnchor. As constructed it holds kValErsCodes, so that an
    /// ERS header gets a system only in words that are read back as the same place.
    void SetParams(const Tellurion::BParamList& params);
    const Tellurion::BParamList& GetParams() const;  ///< see SetParams()

    /// Whether files that are there may be replaced. On until it is set to false; a save into a
    /// raster or a PDF that is there goes on either way. A file that another program makes at
    /// that moment is not replaced either; the failure is a BFileAccessException or a
    /// BGeoReferenceWriteException.
    void SetOverwrites(bool overwrites);
    bool Overwrites() const;  ///< see SetOverwrites()

    /// The control points of the reference with the fractions of their pixels, as
    /// BReading::GetControlPoints() has them; kinds that hold fractions save them. Points that do
    /// not round to those of the reference count for nothing.
    void SetControlPoints(const std::vector<Tellurion::BControlPoint>& points);
    const std::vector<Tellurion::BControlPoint>& GetControlPoints() const;  ///< empty until set

    /// Waits until the file is on the disk. On until it is set to false: then a process that is
    /// killed still leaves the old file or the new one, but a power failure may leave neither.
    void SetSyncs(bool syncs);
    bool Syncs() const;  ///< see SetSyncs()

    /// Reads the file back after the save. On until it is set to false.
    void SetVerifies(bool verifies);
    bool Verifies() const;  ///< see SetVerifies()

    /// How far what is read back may be from what was meant: in pixels, and in metres on the
    /// ground. Both must hold.
    void SetTolerance(double pixels, double metres);
    double GetTolerancePixels() const;  ///< 0.001 until set
    double GetToleranceMetres() const;  ///< 0.001 until set

    /// A save whose proof fails is taken back: the old file is there again, or no file where
    /// there was none. Costs a copy of the old file while the save lasts.
    void SetRequiresExact(bool requires_exact);
    bool RequiresExact() const;  ///< false until set

private:
    struct State;
    State& Change();

    std::shared_ptr<const State> state_;
};

}  // namespace MapAnchor
