#include "tests/Support/AllocationCounter.h"

#include <cstddef>

static thread_local int64_t allocations = 0;

int64_t vantor::allocationCount() {
    return allocations;
}

#ifdef VANTOR_HAS_SANITIZER_ALLOCATOR

// The sanitizers bring their own malloc, and a hook to watch it.
#include <sanitizer/allocator_interface.h>

static void noteAllocation(const volatile void *, std::size_t) {
    ++allocations;
}
static void ignoreFree(const volatile void *) {}
[[maybe_unused]] static const int installed =
    __sanitizer_install_malloc_and_free_hooks(noteAllocation, ignoreFree);

#else

// In front of the C library's, which keeps these names for the purpose. operator new comes through here too.
extern "C" {
void *__libc_malloc(std::size_t size);
void *__libc_calloc(std::size_t count, std::size_t size);
void *__libc_realloc(void *memory, std::size_t size);

void *malloc(std::size_t size) {
    ++allocations;
    return __libc_malloc(size);
}
void *calloc(std::size_t count, std::size_t size) {
    ++allocations;
    return __libc_calloc(count, size);
}
void *realloc(void *memory, std::size_t size) {
    ++allocations;
    return __libc_realloc(memory, size);
}
}

#endif
