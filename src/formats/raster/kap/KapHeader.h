#pragma once

#include "common/policy/ReadNotes.h"

#include <Tellurion/BPointPair.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace MapAnchor {

/// What the text header of a BSB chart says of its position.
struct KapHeader {
    long width = 0;  ///< in pixels; 0 when not stated
    long height = 0;
    std::string datum;
    std::string projection;  ///< kept for the record: a chart's points are in degrees
    std::string units;
    double skew = 0.0;                          ///< degrees; kept for the record
    std::vector<Tellurion::BPointPair> points;  ///< x is the longitude, y the latitude
    DroppedFractions dropped;
    std::vector<int> incomplete_points;  ///< the lines, from 1, whose point lacks a number
    int size_line = 0;                   ///< from 1, as those below; 0 when not stated
    int datum_line = 0;
    int first_point_line = 0;
    int last_point_line = 0;
    bool has_data = false;  ///< a BSB or KNP record gave anything; points do not count
    bool ended = false;     ///< the Ctrl-Z behind the header was met
};

/// No header of a chart comes near this size; a file without a Ctrl-Z is not read further.
constexpr std::size_t kLongestKapHeader = std::size_t{1} << 20;

/// Parses the header at the front of `bytes`, up to the Ctrl-Z that begins a line.
/// Only the first 128 bytes of a line count.
KapHeader ParseKapHeader(std::string_view bytes);

}  // namespace MapAnchor
