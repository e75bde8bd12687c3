#pragma once

#include "read/Diagnostics.h"
#include "read/ReadFile.h"
#include "read/ReadOptions.h"
#include "terminal/CommonOptions.h"
#include "terminal/ExitStatus.h"

#include <MapAnchor/BReferenceFormats.h>
#include <MapAnchor/BSaving.h>
#include <Tellurion/BControlPoint.h>
#include <Tellurion/EReferenceType.h>

#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace Tool {

struct ConvertOptions {
    CommonOptions common;
    ReadOptions read;
    std::string source;
    std::string target;
    std::optional<Tellurion::EReferenceType> to;
    std::string image;
    bool overwrite = false;
    bool dry_run = false;
    bool backup = false;
    std::optional<bool> incremental;  ///< of a PDF; empty: where it is the better way
    int target_page = 1;              ///< of a PDF, counted from 1
    bool add_map = false;             ///< the page keeps the maps that it has
    std::string frame;                ///< of the map on the page, "left,bottom,right,top"; empty: the raster
    std::string map_name;             ///< empty: the library's
    bool wkt2 = false;                ///< where ESRI's text cannot describe the system
    bool no_sync = false;
    bool no_verify = false;
    std::optional<double> tolerance;               ///< in pixels
    std::vector<Tellurion::BControlPoint> points;  ///< of the reference, with fractions of pixels
    bool require_exact = false;
};

/// A save that is about to happen, or would.
struct Plan {
    std::optional<MapAnchor::BReferenceFormat> format;  ///< empty when the target's name says none
    std::string Kind() const { return format ? format->GetName().StdStr() : ""; }
    bool Is(Tellurion::EReferenceType type) const { return format && format->GetType() == type; }
    bool IsPdf() const { return Is(Tellurion::EReferenceType::GeoPDF); }
    /// The target is a raster or a page that takes the reference in; other kinds are written whole.
    bool IsInPlace() const { return format && format->SavesInPlace(); }
    bool writes_prj = false;
    std::vector<std::string> files;
};

struct Outcome {
    std::optional<Failure> failure;
    ExitStatus status = ExitStatus::Done;
    Plan plan;
    Diagnostics diagnostics;
    std::size_t losses = 0;                        ///< how many of the diagnostics say what cannot be saved
    std::vector<std::string> kept;                 ///< copies of what was there before
    std::optional<ReadResult> saved;               ///< a PDF as it is read back, for JSON and a dry run
    std::optional<MapAnchor::BSavingProof> proof;  ///< of what was read back

    void Fail(ExitStatus with, const FailureType& type, const std::string& detail) {
        failure = MakeFailure(type, detail);
        status = with;
    }
    void Warn(const std::string& text) { diagnostics.push_back({false, text}); }
};

/// Saves what was read as the options say.
Outcome SaveReading(ConvertOptions options, ReadResult source, LogCollector& log);

/// Reports what of the reference this kind of target cannot hold.
void WarnOfLosses(const ConvertOptions& options, const Tellurion::BGeoReference& reference, Outcome& outcome);

/// False, with a failure, for corners that would be made up.
bool HasWhatItNeeds(const ConvertOptions& options, const Tellurion::BGeoReference& reference,
                    Outcome& outcome);

/// How the library is to save.
MapAnchor::BSavingOptions SavingOptionsOf(const ConvertOptions& options);

/// A save whose proof fails is an error where an exact one is required; true then.
bool FailWhenInexact(const ConvertOptions& options, Outcome& outcome);

/// The failure that is being handled, with its exit status. To be called in a
/// catch (...) block.
void FailByCurrent(Outcome& outcome);

/// Copies the files that the plan writes over. False, with a failure, when that fails.
bool KeepCopies(Outcome& outcome);

/// The options of a save into a PDF, and what they mean for the library.
void AddPdfTargetOptions(CLI::App& command, ConvertOptions& options);
void SetPdfTarget(ConvertOptions& options);

/// Looks at the page that is to be georeferenced, and sets the raster's size where it is not
/// known: the page at the resolution that was given or, with a warning, at 72 dots per inch.
/// False, with a failure, for a file that cannot be georeferenced.
bool FitToPage(ConvertOptions& options, Outcome& outcome);

/// Georeferences a PDF in place, or rehearses it on a copy. Until the end the target
/// is what it was.
void SavePdf(const ConvertOptions& options, const Tellurion::BGeoReference& reference, LogCollector& log,
             Outcome& outcome);

}  // namespace Tool
