#include "render/SystemTexts.h"

#include "render/JsonRenderer.h"

#include <memory>
#include <unordered_map>

namespace Tool {

using Tellurion::BCoordSys;

namespace {

std::string LineOf(const Json& json) {
    std::string line = ToText(json, CommonOptions());
    line.pop_back();
    return line;
}

SystemTexts Render(const BCoordSys& system) {
    const Json in_wkt = WktJson(system);
    return {in_wkt.is_null() ? "" : LineOf(in_wkt), LineOf(RenderJson(system))};
}

}  // namespace

const SystemTexts& SystemTextsOf(const BCoordSys& system) {
    constexpr std::size_t kMaxSystems = 256;
    // Systems of the same text share a definition; keeping it makes its address unique.
    using Definition = decltype(system.GetDefinition());
    thread_local std::unordered_map<Definition, SystemTexts> known;
    const Definition definition = system.GetDefinition();
    if (const auto found = known.find(definition); found != known.end()) return found->second;
    if (known.size() >= kMaxSystems) known.clear();
    return known.emplace(definition, Render(system)).first->second;
}

}  // namespace Tool
