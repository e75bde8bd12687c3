#include "SchemaCheck.h"

#include <algorithm>
#include <cstdio>
#include <memory>

namespace {

using nlohmann::json;

std::string Check(const json& value, const json& schema, const std::string& at) {
    static const std::vector<std::string> known = {
        "$schema", "title",    "description", "type", "required", "properties", "additionalProperties",
        "items",   "minItems", "maxItems",    "enum", "const"};
    for (const auto& [keyword, unused] : schema.items())
        if (std::find(known.begin(), known.end(), keyword) == known.end())
            return "unknown keyword " + keyword;
    const std::string type = schema.value("type", value.type_name());
    if (type == "integer" ? !value.is_number_integer() : type != value.type_name())
        return at + " is not " + type;
    if (schema.contains("const") && value != schema["const"]) return at + " is not the constant";
    const json words = schema.value("enum", json::array({value}));
    if (std::find(words.begin(), words.end(), value) == words.end()) return at + " is none of the words";
    if (value.is_array() && (value.size() < schema.value("minItems", std::size_t{0}) ||
                             value.size() > schema.value("maxItems", value.size())))
        return at + " has a wrong number of items";
    for (const auto& key : schema.value("required", json::array()))
        if (!value.contains(key)) return at + " lacks " + key.get<std::string>();
    if (!value.is_structured()) return {};
    const json properties = schema.value("properties", json::object());
    for (const auto& [key, member] : value.items()) {
        const bool is_known = value.is_array() ? schema.contains("items") : properties.contains(key);
        if (!is_known && value.is_object() && !schema.value("additionalProperties", true))
            return at + " has an unknown key " + key;
        if (!is_known) continue;
        const json& rules = value.is_array() ? schema["items"] : properties[key];
        if (auto fault = Check(member, rules, at + "." + key); !fault.empty()) return fault;
    }
    return {};
}

}  // namespace

std::string SchemaFault(const json& value, const char* schema_text) {
    static const json published = [] {
        const std::unique_ptr<FILE, int (*)(FILE*)> tool(popen("'" MAPANCHOR_TOOL "' --json-schema", "r"),
                                                         pclose);
        return json::parse(tool.get());
    }();
    return Check(value, schema_text ? json::parse(schema_text) : published, "$");
}
