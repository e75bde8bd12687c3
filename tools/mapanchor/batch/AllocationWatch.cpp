#include "batch/AllocationWatch.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define MAPANCHOR_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) || __has_feature(memory_sanitizer)
#define MAPANCHOR_SANITIZED 1
#endif
#endif

namespace Tool {
namespace {

std::atomic<bool> has_failed{false};

#if defined(__GLIBC__) && !defined(MAPANCHOR_SANITIZED)
void* Watched(void* memory, std::size_t size) {
    if (!memory && size != 0) has_failed.store(true, std::memory_order_relaxed);
    return memory;
}
#endif

}  // namespace

bool AllocationHasFailed() {
    return has_failed.load(std::memory_order_relaxed);
}

void ForgetFailedAllocations() {
    has_failed.store(false, std::memory_order_relaxed);
}

}  // namespace Tool

#if defined(__GLIBC__) && !defined(MAPANCHOR_SANITIZED)
extern "C" {

// The allocator of glibc under the names that it exports for this purpose.
void* __libc_malloc(std::size_t size);                     // NOLINT(bugprone-reserved-identifier)
void* __libc_calloc(std::size_t count, std::size_t size);  // NOLINT(bugprone-reserved-identifier)
void* __libc_realloc(void* memory, std::size_t size);      // NOLINT(bugprone-reserved-identifier)

void* malloc(std::size_t size) {
    return Tool::Watched(__libc_malloc(size), size);
}

void* calloc(std::size_t count, std::size_t size) {
    return Tool::Watched(__libc_calloc(count, size), count == 0 ? 0 : size);
}

void* realloc(void* memory, std::size_t size) {
    return Tool::Watched(__libc_realloc(memory, size), size);
}
}
#endif
