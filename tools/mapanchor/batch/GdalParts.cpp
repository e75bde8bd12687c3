#include "batch/GdalParts.h"

namespace Tool {
namespace {

constexpr GdalParts kParts = {MAPANCHOR_VERSION, CutAtAntimeridian, Contains, MakeIndex};

}  // namespace
}  // namespace Tool

extern "C" __attribute__((visibility("default"))) const Tool::GdalParts* mapanchor_tool_parts();

const Tool::GdalParts* mapanchor_tool_parts() {
    return &Tool::kParts;
}
