#pragma once

#include <MapAnchor/BReading.h>
#include <MapAnchor/Export.h>
#include <Tellurion/BString.h>

#include <memory>
#include <vector>

namespace MapAnchor {

struct ReferenceSourceState;
struct ReferenceSourcesState;

/// One place where a raster's georeferencing is written. A value that is cheap to copy.
class MAPANCHOR_EXPORT BReferenceSource {
public:
    BReferenceSource(const BReferenceSource&);
    BReferenceSource& operator=(const BReferenceSource&);
    ~BReferenceSource();

    /// "internal" for the raster's own tags or points, "aux.xml", "PRJ", or the name of a
    /// BReferenceFormat such as "WLD".
    Tellurion::BString GetKind() const;
    std::vector<Tellurion::BString> GetFiles() const;  ///< such as photo.jgw and photo.prj
    const BReading& GetReading() const;                ///< what it states, on its own
    bool Wins() const;                                 ///< BReading::Of() takes its position
    bool WinsInGdal() const;                           ///< GDAL takes its position
    /// How far it puts the raster's corners from where the winner puts them, at the worst
    /// corner; not a number when the two cannot be compared.
    double GetDistancePixels() const;
    double GetDistanceMetres() const;  ///< the same on the Earth; not a number without a system

    /// For the library's own use.
    explicit BReferenceSource(std::shared_ptr<const ReferenceSourceState> state);

private:
    std::shared_ptr<const ReferenceSourceState> state_;
};

/// Every source of georeferencing that a raster has: its own tags or control points and the
/// files beside it, in world files' many spellings and any case of letters.
///
/// GDAL's choice wins wherever GDAL makes one, so that both place the raster alike; where it
/// makes none, the order is auxiliary file, raster, world file, TAB, ERS, RSF. A winner
/// without a coordinate system takes that of the next source that has one.
class MAPANCHOR_EXPORT BReferenceSources {
public:
    /// Reads them all. Of the options the fit, the size and the drivers count. Nothing throws
    /// for the file's sake; a raster without any source has an empty list.
    static BReferenceSources Of(const Tellurion::BString& raster,
                                const BReadingOptions& options = BReadingOptions());

    BReferenceSources(const BReferenceSources&);
    BReferenceSources& operator=(const BReferenceSources&);
    ~BReferenceSources();

    Tellurion::BString GetRaster() const;                     ///< as named by the caller
    const std::vector<BReferenceSource>& GetSources() const;  ///< in the order above
    const BReading& GetReading() const;                       ///< what BReading::Of() makes of them

    /// For the library's own use.
    explicit BReferenceSources(std::shared_ptr<const ReferenceSourcesState> state);

private:
    std::shared_ptr<const ReferenceSourcesState> state_;
};

}  // namespace MapAnchor
