#include "SchemaCheck.h"

#include <algorithm>
#include <fstream>

namespace {

using nlohmann::json;

bool HasType(const json& value, const std::string& type) {
    if (type == "object") return value.is_object();
    if (type == "array") return value.is_array();
    if (type == "string") return value.is_string();
    if (type == "boolean") return value.is_boolean();
    if (type == "integer") return value.is_number_integer();
    return type == "number" && value.is_number();
}

std::string Check(const json& value, const json& schema, const std::string& at);

std::string CheckObject(const json& value, const json& schema, const std::string& at) {
    for (const auto& key : schema.value("required", json::array()))
        if (!value.contains(key)) return at + " lacks " + key.get<std::string>();
    const json properties = schema.value("properties", json::object());
    for (const auto& [key, member] : value.items()) {
        if (!properties.contains(key)) return at + " has an unknown key " + key;
        if (auto fault = Check(member, properties[key], at + "." + key); !fault.empty()) return fault;
    }
    return {};
}

std::string CheckArray(const json& value, const json& schema, const std::string& at) {
    const std::size_t least = schema.value("minItems", std::size_t{0});
    const std::size_t most = schema.value("maxItems", value.size());
    if (value.size() < least || value.size() > most) return at + " has a wrong number of items";
    for (std::size_t i = 0; i < value.size(); ++i)
        if (auto fault = Check(value[i], schema["items"], at + "[" + std::to_string(i) + "]"); !fault.empty())
            return fault;
    return {};
}

std::string Check(const json& value, const json& schema, const std::string& at) {
    static const std::vector<std::string> known = {
        "$schema", "title",    "description", "type", "required", "properties", "additionalProperties",
        "items",   "minItems", "maxItems",    "enum", "const"};
    for (const auto& [keyword, unused] : schema.items())
        if (std::find(known.begin(), known.end(), keyword) == known.end())
            return "unknown keyword " + keyword;
    if (schema.contains("type") && !HasType(value, schema["type"]))
        return at + " is no " + schema["type"].dump();
    if (schema.contains("const") && value != schema["const"]) return at + " is not the constant";
    if (schema.contains("enum") &&
        std::find(schema["enum"].begin(), schema["enum"].end(), value) == schema["enum"].end())
        return at + " is none of the words";
    if (value.is_object()) return CheckObject(value, schema, at);
    if (value.is_array()) return CheckArray(value, schema, at);
    return {};
}

}  // namespace

std::string SchemaFault(const json& value) {
    static const json schema = json::parse(std::ifstream(MAPANCHOR_SCHEMA_FILE));
    return Check(value, schema, "$");
}
