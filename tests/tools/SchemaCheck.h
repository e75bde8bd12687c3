#pragma once

#include <nlohmann/json.hpp>
#include <string>

/// What a schema, the published one by default, forbids in a value, with its place; empty when
/// nothing. Knows the keywords that these schemas use and complains about any other.
std::string SchemaFault(const nlohmann::json& value, const char* schema_text = nullptr);
