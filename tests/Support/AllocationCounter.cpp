#include "tests/Support/AllocationCounter.h"

#include <cstdlib>
#include <new>

static thread_local int64_t allocations = 0;

int64_t vantor::allocationCount() {
    return allocations;
}

#if defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define VANTOR_THREAD_SANITIZER
#endif
#endif

#ifdef VANTOR_THREAD_SANITIZER
// The sanitizer brings an operator new of its own, and a hook beside it.
#include <sanitizer/allocator_interface.h>

[[maybe_unused]] static const int hook = __sanitizer_install_malloc_and_free_hooks(
    [](const volatile void *, size_t) { ++allocations; }, [](const volatile void *) {});
#else
// All other forms of new end up in this one, but those of over-aligned types.
void *operator new(std::size_t size) {
    ++allocations;
    if (void *memory = std::malloc(size > 0 ? size : 1))
        return memory;
    throw std::bad_alloc();
}

void operator delete(void *memory) noexcept {
    std::free(memory);
}

void operator delete(void *memory, std::size_t) noexcept {
    std::free(memory);
}
#endif
