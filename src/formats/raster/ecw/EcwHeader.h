#pragma once

#include <Tellurion/RandomAccessFile.h>

#include <Tellurion/BString.h>

#include <optional>
#include <string>
#include <string_view>

namespace MapAnchor {

/// What an ECW file, or a JPEG 2000 file in its terms, says of its place. The origin
/// is the outer corner of the top left pixel.
struct EcwHeader {
    int units = 0;  ///< 1 metres, 2 degrees, 3 feet
    double increment_x = 0.0;
    double increment_y = 0.0;  ///< its sign means nothing: y falls by it
    double origin_x = 0.0;
    double origin_y = 0.0;
    std::string datum;
    std::string projection;
};

enum class EcwKind { Unknown, Version2, Version3, Jpeg2000 };

/// Told by the first bytes alone; the extension is used by others, too.
EcwKind TellEcwKind(std::string_view head);

/// Reads a file of that kind. Empty when its numbers make no sense.
std::optional<EcwHeader> ReadEcwHeader(Tellurion::RandomAccessFile& file, std::string_view head, EcwKind kind,
                                       const Tellurion::BString& path);

/// How many bytes from the start of a file the two above need.
constexpr std::size_t kEcwHead = 128;

}  // namespace MapAnchor
