#pragma once

#include "mapanchor.h"

#include "read/Diagnostics.h"
#include "read/ReadFile.h"

#include <MapAnchor/BReading.h>
#include <MapAnchor/BSaving.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>

namespace Border {

/// What a structure states of a coordinate system.
struct SystemFacts {
    std::string wkt;
    std::string name;
    int32_t epsg = 0;
};

}  // namespace Border

/// What was read, with the texts that structures point to.
struct mapanchor_reading {
    Tool::ReadResult result;
    int status = MAPANCHOR_OK;
    std::string error;
    mutable std::optional<Border::SystemFacts>
        system;  ///< made when it is asked for, by one thread at a time
};

struct mapanchor_saving {
    std::string text;
    MapAnchor::BSavingProof proof;
    Tool::Diagnostics diagnostics;
};

/// What every function at the border with C does in the same way: it lets no exception out, and
/// keeps why it failed for the thread.
namespace Border {

/// An argument of a call, or a state, that the call cannot go on with.
struct Refusal {
    int status;
    std::string text;
};

/// The statuses of C begin with the outcomes of a reading, under the same numbers.
constexpr int StatusOf(MapAnchor::BReading::EOutcome outcome) {
    return static_cast<int>(outcome);
}
static_assert(StatusOf(MapAnchor::BReading::EOutcome::Read) == MAPANCHOR_OK &&
              StatusOf(MapAnchor::BReading::EOutcome::NoReference) == MAPANCHOR_NO_REFERENCE &&
              StatusOf(MapAnchor::BReading::EOutcome::Refused) == MAPANCHOR_REFUSED &&
              StatusOf(MapAnchor::BReading::EOutcome::NotFound) == MAPANCHOR_NOT_FOUND &&
              StatusOf(MapAnchor::BReading::EOutcome::NoAccess) == MAPANCHOR_NO_ACCESS &&
              StatusOf(MapAnchor::BReading::EOutcome::Invalid) == MAPANCHOR_INVALID &&
              StatusOf(MapAnchor::BReading::EOutcome::OutOfMemory) == MAPANCHOR_OUT_OF_MEMORY);
/// The status of a failure of the library.
int StatusOf(const Tool::Failure& failure);
/// Keeps a failure for mapanchor_last_error(); returns `status`.
int Fail(int status, const std::string& text) noexcept;
/// Keeps the failure that is being handled; to be called in a catch (...) block.
int FailCurrent() noexcept;

/// Runs `work`, which returns a handle; NULL when it throws.
template <class Work>
auto Made(Work work) noexcept -> decltype(work()) {
    try {
        return work();
    } catch (...) {
        FailCurrent();
        return nullptr;
    }
}

/// Runs `work`; the status is that of what it throws.
template <class Work>
int Done(Work work) noexcept {
    try {
        work();
        return MAPANCHOR_OK;
    } catch (...) {
        return FailCurrent();
    }
}

/// `argument`, which must not be null.
template <class T>
T& Needed(T* argument, const char* name) {
    if (!argument) throw Refusal{MAPANCHOR_BAD_ARGUMENT, std::string(name) + " is NULL"};
    return *argument;
}

/// Refuses a structure whose size is not set.
void CheckSize(std::size_t size, const char* name);
/// Refuses bytes other than 0, which mean something that this version does not know.
void CheckZero(const void* bytes, std::size_t size, const char* name);

/// The structure as this version knows it; all 0 for null.
template <class T>
T Known(const T* given, const char* name) {
    T known{};
    if (!given) return known;
    CheckSize(given->size, name);
    std::memcpy(&known, given, std::min(given->size, sizeof(T)));
    if (given->size > sizeof(T))
        CheckZero(reinterpret_cast<const char*>(given) + sizeof(T), given->size - sizeof(T), name);
    return known;
}

/// Gives the caller's structure, which may be of another version, what this one knows.
template <class T>
void Give(const T& known, T* to, const char* name) {
    const std::size_t size = Needed(to, name).size;
    CheckSize(size, name);
    std::memset(to, 0, size);
    std::memcpy(to, &known, std::min(size, sizeof(T)));
    to->size = size;
}

/// The element of that index.
template <class List>
const auto& At(const List& list, std::size_t index, const char* name) {
    if (index < list.size()) return list[index];
    throw Refusal{MAPANCHOR_BAD_ARGUMENT, std::string("there are ") + std::to_string(list.size()) + " " +
                                              name + ", counted from 0, and none has index " +
                                              std::to_string(index)};
}

/// A text of the caller's; throws a std::bad_alloc when there is no memory.
char* CopyOf(std::string text);

void GiveDiagnostic(const Tool::Diagnostics& list, std::size_t index, mapanchor_diagnostic* to);

/// The coordinate system of a text in any notation, which must not be null.
Tellurion::BSharedPtr<Tellurion::BCoordSys> SystemOf(const std::string& text);

/// A number of pixels, which must be one.
long SideOf(int64_t pixels, const char* name);

/// How options of C are those of the tool.
Tool::ReadOptions ReadOptionsOf(const mapanchor_read_options* options);
/// A handle of what was read.
mapanchor_reading* HandleOf(const MapAnchor::BReading& reading, const std::string& name, int page);

}  // namespace Border
