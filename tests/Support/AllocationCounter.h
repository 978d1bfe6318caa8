#pragma once

#include <cstdint>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define VANTOR_HAS_SANITIZER_ALLOCATOR
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define VANTOR_HAS_SANITIZER_ALLOCATOR
#endif
#endif

namespace vantor {

/// How often this thread has asked for memory so far, by operator new or malloc. Programs that use it link
/// AllocationCounter.cpp.
[[nodiscard]] int64_t allocationCount();

} // namespace vantor
