#pragma once

#include <Tellurion/BControlPoint.h>
#include <Tellurion/BString.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace MapAnchor {

/// What is wrong with a text of control points, and where; both count from 1, 0 when unknown.
struct PointFault {
    std::size_t line;
    std::size_t column;
    std::string text;
};

/// The whole of a file of control points, of at most 64 MiB. Throws a BFileNotFoundException or a
/// BFileAccessException from `source`.
std::string PointFileContent(const Tellurion::BString& file, const char* source);
/// The failure of a file in which that is wrong; a BGeoReferenceInvalidReferenceFileException.
[[noreturn]] void ThrowPointFault(const Tellurion::BString& file, const PointFault& fault,
                                  const char* source);
[[noreturn]] void ThrowNoPoints(const Tellurion::BString& file, const char* source);

/// What a column or property is, by the names that are in use.
enum class PointField {
    None,
    Pixel,
    Line,
    X,
    Y,
    Longitude,
    Latitude,
    MapX,
    MapY,
    MinusLine,
    Z,
    Name,
    Enabled
};
PointField PointFieldOf(std::string_view name);

/// A table of control points: that of QGIS's georeferencer, or any with named columns.
struct PointTable {
    std::vector<Tellurion::BControlPoint> Points = {};  ///< rows count downwards from the top edge
    Tellurion::BString CoordSys = {};                   ///< as BCoordSys::FromText takes it; may be empty
    bool IsQgis = false;
    bool OldHeader = false;  ///< QGIS's columns are pixelX, pixelY
    std::vector<Tellurion::BString> Warnings = {};
};

/// `order` names the columns of a table without a header. A `system` that the caller knows is that of the
/// positions, whatever the table states. Throws a PointFault.
PointTable ParsePointTable(std::string_view text, std::string_view order, const Tellurion::BString& system);

std::string FormatPointTable(const PointTable& file, char separator);
std::string FormatQgisPoints(const PointTable& file);

}  // namespace MapAnchor
