#pragma once

#include <sys/stat.h>

namespace vantor {

/// Seconds since 1970. The same instant always gives the same number, so that stamps can be compared.
[[nodiscard]] inline double modificationTime(const struct stat &status) {
#if defined(__APPLE__)
    const timespec &time = status.st_mtimespec;
#else
    const timespec &time = status.st_mtim;
#endif
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

} // namespace vantor
