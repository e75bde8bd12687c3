#pragma once

#include "sidecar/points/PointTable.h"

#include <MapAnchor/BControlPointFile.h>

#include <string>
#include <string_view>

namespace MapAnchor {

/// Each fills points, system and warnings, and throws a PointFault.
void ParsePointJson(std::string_view text, BControlPointFile& file);
void ParseGcpOptions(std::string_view text, BControlPointFile& file);
void ParseGcpList(std::string_view text, BControlPointFile& file);

std::string FormatPointJson(const BControlPointFile& file);
std::string FormatGcpOptions(const BControlPointFile& file);

}  // namespace MapAnchor
