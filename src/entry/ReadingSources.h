#pragma once

#include "ReadingState.h"
#include "SidecarNames.h"

#include <MapAnchor/BReferenceSources.h>

#include <limits>
#include <memory>
#include <vector>

namespace MapAnchor {

/// One source while the winner is looked for.
struct ReferenceSourceState {
    explicit ReferenceSourceState(const char* name) : kind(name) {}

    const char* kind;
    std::shared_ptr<ReadingState> reading = std::make_shared<ReadingState>();
    BReading shown = BReading(reading);
    bool wins = false;
    bool wins_in_gdal = false;
    double pixels = std::numeric_limits<double>::quiet_NaN();
    double metres = std::numeric_limits<double>::quiet_NaN();

    bool HasPosition() const {
        return !reading->failure &&
               (reading->reference.HasMathTransform() || !reading->reference.PointPairVector.empty());
    }
    bool HasSystem() const { return !reading->failure && reading->reference.HasCoordSys(); }
    bool IsNamed(const Tellurion::BString& name) const;
};

using SourceList = std::vector<std::shared_ptr<ReferenceSourceState>>;

struct ReferenceSourcesState {
    Tellurion::BString raster;
    std::vector<BReferenceSource> sources;
    std::shared_ptr<ReadingState> reading = std::make_shared<ReadingState>();
    BReading shown = BReading(reading);
};

/// Reads the raster itself and the files beside it. Sources that state nothing are left out,
/// but for files that cannot be read.
SourceList ReadSources(const Tellurion::BString& raster, const std::vector<SidecarName>& beside,
                       const BReadingOptions& options);

/// Marks the winner, or the source that the options name, and fills `state` with its reading:
/// its system from another source where it has none, and remarks on the others. `gdal` is what
/// GDAL makes of the raster with all files beside it.
void ReadFromWinner(SourceList& sources, const BReadingOptions& options, const ReadingState& gdal,
                    ReadingState& state);

/// Marks what GDAL takes and how far each source is from the winner. `size` is of the raster.
void MeasureSources(SourceList& sources, const ReadingState& gdal, long width, long height);

/// Reads as GDAL does, with all files beside the raster.
void ReadAsGdal(const Tellurion::BString& raster, const BReadingOptions& options, ReadingState& state);

}  // namespace MapAnchor
