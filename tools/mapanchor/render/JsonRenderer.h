#pragma once

#include "read/ReadFile.h"
#include "terminal/CommonOptions.h"

#include <Tellurion/TextPieces.h>

#include <nlohmann/json.hpp>
#include <optional>
#include <string>

namespace Tool {

using Json = nlohmann::ordered_json;

/// The published schema, with an empty list of kinds.
extern const char* const kJsonSchema;
/// The published schema of this build.
std::string JsonSchema();

constexpr int kSchemaVersion = 2;

/// The beginning of the object of one input: its name in "description" and, for one that is
/// not UTF-8, its bytes in "descriptionBytes", so that names stay apart.
Json JsonAbout(const std::string& name);
/// The name, byte for byte, that an object begun by JsonAbout() has; empty for other objects.
std::optional<std::string> NameIn(const Json& row);
/// The bytes of a name as in a URI: all but ASCII letters, digits and "/-._~" as "%E9".
std::string PercentText(const std::string& name);

/// All that is known of an input but its control points, whose lists are empty.
Json JsonWithoutPoints(const ReadResult& result);
/// The control points. Takes a hundred times their memory.
Json PointsJson(const ReadResult& result);
Json RenderJson(const Failure& failure);
Json RenderJson(const Tellurion::BCoordSys& system);
/// The system as well-known text; null for one that has none.
Json WktJson(const Tellurion::BCoordSys& system);
Json RenderJson(const Diagnostics& diagnostics);

/// All that is known of an input, as ToText() of it, piece by piece.
void WriteJson(const ReadResult& result, const CommonOptions& options,
               const Tellurion::TextPieces::Write& write);

/// One line, or spread over lines when an indent is asked for, with escapes for all that is
/// not Printable(). Bytes that are not UTF-8 become U+FFFD.
std::string ToText(const Json& json, const CommonOptions& options);

}  // namespace Tool
