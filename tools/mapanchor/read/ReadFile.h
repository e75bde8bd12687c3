#pragma once

#include "read/Diagnostics.h"
#include "read/Failure.h"
#include "read/ReadOptions.h"
#include "terminal/ExitStatus.h"

#include <MapAnchor/BGeoPDFPage.h>
#include <MapAnchor/BReading.h>
#include <Tellurion/BGeoReference.h>

#include <optional>
#include <string>
#include <vector>

namespace Tool {

enum class Road { Name, Type };

/// What became of one input.
struct ReadResult {
    std::string file;
    std::optional<Failure> failure;  ///< empty when there is a reference
    Tellurion::BGeoReference reference;
    std::vector<Tellurion::BControlPoint> points;  ///< those of the reference, with fractions of pixels
    Road road = Road::Name;
    std::string kind;       ///< short name of the kind that was read, such as "WLD"; empty when unknown
    std::string used_file;  ///< the file that was actually read
    std::vector<std::string> files;  ///< all that took part
    std::string raster;              ///< that the reference is of; empty when only a sidecar was named
    bool centre_anchored = false;
    std::optional<long> width;  ///< of the raster, as given or as the file implies
    std::optional<long> height;
    std::optional<MapAnchor::BGeoPDFPage> page;  ///< of a PDF
    int page_number = 1;                         ///< counted from 1
    Diagnostics diagnostics;
    std::vector<MapAnchor::BReading::Origin> origins;  ///< of --explain

    bool Ok() const { return !failure; }
    ExitStatus Status() const;
};

/// A remark of the library, in this program's terms.
Diagnostic DiagnosticOf(const MapAnchor::BDiagnostic& remark);
/// Adds what the library remarks, in this program's terms.
void AddRemarks(const std::vector<MapAnchor::BDiagnostic>& remarks, Diagnostics& diagnostics);

/// What a reading says, in this program's terms.
ReadResult ResultOf(const MapAnchor::BReading& reading, const std::string& name);

/// What BReading::Of() makes of the file. Never throws for the file's sake.
ReadResult ReadFile(const std::string& file, const ReadOptions& options, LogCollector& log);

}  // namespace Tool
