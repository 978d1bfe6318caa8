#pragma once

#include <cstdint>

namespace vantor {

/// How often this thread has asked for memory so far, by operator new or malloc. Programs that use it link AllocationCounter.cpp.
[[nodiscard]] int64_t allocationCount();

} // namespace vantor
