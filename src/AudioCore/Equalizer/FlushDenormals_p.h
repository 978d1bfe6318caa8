#pragma once

#if defined(__SSE2__)
#include <xmmintrin.h>
#endif

#include <cstdint>

namespace vantor {

/// While it lives, denormal numbers count as zero on this thread: a filter that rings out into silence would
/// otherwise become many times slower. Does nothing on processors it does not know.
class FlushDenormals {
  public:
    FlushDenormals() : m_saved(read()) { write(m_saved | flushBits); }
    ~FlushDenormals() { write(m_saved); }
    FlushDenormals(const FlushDenormals &) = delete;
    FlushDenormals &operator=(const FlushDenormals &) = delete;

  private:
#if defined(__SSE2__)
    using Register = unsigned int;
    static constexpr Register flushBits = 0x8040; // FTZ and DAZ
    static Register read() { return _mm_getcsr(); }
    static void write(Register value) { _mm_setcsr(value); }
#elif defined(__aarch64__) && defined(__GNUC__)
    using Register = std::uint64_t;
    static constexpr Register flushBits = 1U << 24; // FZ
    static Register read() {
        Register value = 0;
        asm volatile("mrs %0, fpcr" : "=r"(value));
        return value;
    }
    static void write(Register value) { asm volatile("msr fpcr, %0" ::"r"(value)); }
#else
    using Register = unsigned int;
    static constexpr Register flushBits = 0;
    static Register read() { return 0; }
    static void write(Register) {}
#endif

    Register m_saved;
};

} // namespace vantor
