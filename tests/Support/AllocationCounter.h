#pragma once

#include <cstdint>

namespace vantor {

/// How often this thread has taken memory with operator new so far. Programs that use it link
/// AllocationCounter.cpp.
[[nodiscard]] int64_t allocationCount();

} // namespace vantor
