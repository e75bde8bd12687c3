#pragma once

#include "common/storing/Affine.h"

#include <Tellurion/BFile.h>
#include <Tellurion/BString.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace MapAnchor {

/// The tags of an ERS header that place the raster. Reading stops at the first tag
/// that does not scan.
struct ErsHeader {
    bool has_raster_info_end = false;
    std::optional<double> x_dimension;  ///< metres, or degrees
    std::optional<double> y_dimension;  ///< the same, always negative
    std::optional<double> eastings;     ///< in the system's unit
    std::optional<double> northings;
    std::optional<double> cell_x;  ///< the registered cell; the first one without
    std::optional<double> cell_y;
    Tellurion::BString datum;
    Tellurion::BString projection;

    Tellurion::BString rotation;  ///< such as "0:0:0.0"; kept for the record
    double columns = 0.0;         ///< of the raster; 0 when not stated
    double rows = 0.0;

    const char* faulty_tag = nullptr;  ///< where reading stopped, if that is a fault to tell
    const char* empty_tag = nullptr;   ///< the first name tag without a name; reading went on

    /// The line of each tag that was read, from 1; the last one where a tag is there twice.
    std::vector<std::pair<const char*, long>> lines;
    long LineOf(const char* tag) const;  ///< 0 for a tag that is not there

    bool HasTerms() const { return x_dimension && y_dimension && eastings && northings; }
    /// The affine of a pixel's corner; only with all terms. Dimensions are in metres
    /// and the registered position is not.
    AffineTerms ToAffine(double units_per_metre) const;
};

ErsHeader ParseErs(Tellurion::BFile& file);

/// What the header of a raster says; the rest of its lines never changes.
struct ErsContent {
    Tellurion::BString name;
    std::string time_stamp;  ///< with its line end
    Tellurion::BString image_name;
    Tellurion::BString datum;       ///< empty for none
    Tellurion::BString projection;  ///< empty for none
    AffineTerms terms;
    double units_per_metre = 1.0;
    long width = 0;
    long height = 0;
};

Tellurion::BString FormatErs(const ErsContent& content);

}  // namespace MapAnchor
