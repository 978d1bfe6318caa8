#include "tests/Support/AllocationCounter.h"

#include <cstdlib>
#include <new>

static thread_local int64_t allocations = 0;

int64_t vantor::allocationCount() {
    return allocations;
}

// The other forms of new and delete end up in these.
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
