#pragma once

#include <MapAnchor/BControlPointFile.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace MapAnchor {

/// What is wrong with a text of control points, and where; both count from 1, 0 when unknown.
struct PointFault {
    std::size_t line;
    std::size_t column;
    std::string text;
};

/// Each fills points, system and warnings, and throws a PointFault.
void ParsePointTable(std::string_view text, std::string_view order, BControlPointFile& file);
void ParsePointJson(std::string_view text, BControlPointFile& file);
void ParseGcpOptions(std::string_view text, BControlPointFile& file);
void ParseGcpList(std::string_view text, BControlPointFile& file);

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

std::string FormatPointTable(const BControlPointFile& file, char separator);
std::string FormatQgisPoints(const BControlPointFile& file);
std::string FormatPointJson(const BControlPointFile& file);
std::string FormatGcpOptions(const BControlPointFile& file);

}  // namespace MapAnchor
