#pragma once

#include "CommonOptions.h"
#include "ReadFile.h"

#include <nlohmann/json.hpp>
#include <string>

using Json = nlohmann::ordered_json;

/// The published schema, as text.
extern const char* const kJsonSchema;

constexpr int kSchemaVersion = 1;

Json RenderJson(const ReadResult& result);
Json RenderJson(const Failure& failure);
Json RenderJson(const Tellurion::BCoordSys& system);
Json RenderJson(const Diagnostics& diagnostics);

/// One line, or spread over lines when an indent is asked for. Bytes that are no
/// UTF-8 become U+FFFD.
std::string ToText(const Json& json, const CommonOptions& options);
