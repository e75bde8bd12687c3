#include "crs/ProjObjects.h"

#include <charconv>
#include <cstring>

namespace Tellurion::Proj {
namespace {

thread_local PJ_CONTEXT* context = nullptr;
thread_local bool context_gone = false;

/// Ends the context with its thread. The two variables above outlive it.
struct ContextEnd {
    ~ContextEnd() {
        proj_context_destroy(context);
        context = nullptr;
        context_gone = true;
    }
};

PJ_CONTEXT* CreateContext() {
    PJ_CONTEXT* created = proj_context_create();
    static thread_local const ContextEnd end;
    static_cast<void>(end);
    proj_log_level(created, PJ_LOG_NONE);
    proj_context_set_enable_network(created, 0);
    return created;
}

bool IsEpsg(const char* authority) {
    return authority && std::strcmp(authority, "EPSG") == 0;
}

}  // namespace

PJ_CONTEXT* ThreadContext() {
    if (!context && !context_gone) context = CreateContext();
    return context;
}

void ObjectDeleter::operator()(PJ* object) const noexcept {
    // The context of the object's making may have ended with its thread.
    proj_assign_context(object, nullptr);
    proj_destroy(object);
}

bool GetAxis(PJ* crs, int index, Axis& axis, Object& owner) {
    owner.reset(proj_crs_get_coordinate_system(ThreadContext(), crs));
    if (!owner || index >= proj_cs_get_axis_count(ThreadContext(), owner.get())) return false;
    const char* authority = nullptr;
    const char* code = nullptr;
    if (!proj_cs_get_axis_info(ThreadContext(), owner.get(), index, &axis.name, nullptr, &axis.direction,
                               &axis.unit_factor, &axis.unit_name, &authority, &code))
        return false;
    axis.unit_epsg = IsEpsg(authority) ? ParseCode(code) : 0;
    return true;
}

int CountAxes(PJ* crs) {
    const Object system(proj_crs_get_coordinate_system(ThreadContext(), crs));
    return system ? proj_cs_get_axis_count(ThreadContext(), system.get()) : 0;
}

bool HasAxesEastNorth(PJ* crs) {
    Axis first;
    Axis second;
    Object owner;
    Object other_owner;
    return GetAxis(crs, 0, first, owner) && GetAxis(crs, 1, second, other_owner) &&
           std::strcmp(first.direction, "east") == 0 && std::strcmp(second.direction, "north") == 0;
}

std::string NameOf(const PJ* object) {
    const char* name = proj_get_name(object);
    return name ? name : "";
}

int StatedEpsg(PJ* object) {
    for (int i = 0; const char* authority = proj_get_id_auth_name(object, i); ++i)
        if (IsEpsg(authority)) return ParseCode(proj_get_id_code(object, i));
    return 0;
}

int ParseCode(const char* text) {
    if (!text) return 0;
    int number = 0;
    const char* end = text + std::strlen(text);
    const auto result = std::from_chars(text, end, number);
    return result.ec == std::errc() && result.ptr == end && number > 0 ? number : 0;
}

}  // namespace Tellurion::Proj
