#pragma once

#include <MapAnchor/BGeoReferenceNotSupportedException.h>

namespace MapAnchor {

/// How a kind that is read only refuses to be saved. The texts are fixed, spelling included.
struct SaveRefusal {
    const char* source = nullptr;
    const char* detail = nullptr;
};

[[noreturn]] inline void Refuse(const SaveRefusal& refusal) {
    throw BGeoReferenceNotSupportedException(refusal.source, refusal.detail);
}

}  // namespace MapAnchor
