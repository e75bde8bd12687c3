#pragma once

#include <nlohmann/json.hpp>
#include <string>

/// What the published schema has against a value, with its place; empty when nothing.
/// Knows the keywords that the schema uses and complains about any other.
std::string SchemaFault(const nlohmann::json& value);
