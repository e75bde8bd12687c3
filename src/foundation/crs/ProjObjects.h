#pragma once

#include <proj.h>

#include <memory>
#include <string>

/// Scoped owners of PROJ's objects, and the contexts they are made in.
namespace Tellurion::Proj {

/// The calling thread's context: silent, without network. PROJ's default context
/// once the thread's own is gone, as it is while statics are destroyed.
PJ_CONTEXT* ThreadContext();

/// Destroys an object in whatever thread holds it last.
struct ObjectDeleter {
    void operator()(PJ* object) const noexcept;
};
using Object = std::unique_ptr<PJ, ObjectDeleter>;

struct ListDeleter {
    void operator()(PJ_OBJ_LIST* list) const noexcept { proj_list_destroy(list); }
};
using List = std::unique_ptr<PJ_OBJ_LIST, ListDeleter>;

struct IntsDeleter {
    void operator()(int* numbers) const noexcept { proj_int_list_destroy(numbers); }
};
using Ints = std::unique_ptr<int, IntsDeleter>;

/// One axis of a coordinate system; the texts live as long as their system.
struct Axis {
    const char* name = "";
    const char* direction = "";
    const char* unit_name = "";
    /// Metres or radians for one unit.
    double unit_factor = 0.0;
    /// The EPSG code of the unit, 0 without one.
    int unit_epsg = 0;
};

/// The axis of that index of a coordinate reference system; false when it has none.
/// `owner` keeps the texts alive.
bool GetAxis(PJ* crs, int index, Axis& axis, Object& owner);

/// How many axes a coordinate reference system has; 0 when it cannot tell.
int CountAxes(PJ* crs);

/// True for a projected system whose first axis goes east and whose second goes north.
bool HasAxesEastNorth(PJ* crs);

/// What the object calls itself; empty for one without a name, as "LOCAL_CS[]" makes it.
std::string NameOf(const PJ* object);

/// The number of an "EPSG" identifier that the object itself carries, 0 without one.
int StatedEpsg(PJ* object);

/// A whole number of digits only, 0 for anything else.
int ParseCode(const char* text);

}  // namespace Tellurion::Proj
