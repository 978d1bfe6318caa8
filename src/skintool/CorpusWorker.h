#pragma once

#include "skintool/CorpusSkins.h"

namespace vantor {

/// What happens in the process that a skin has to itself.
namespace CorpusWorker {

/// The status with which a worker ends for want of memory.
inline constexpr int outOfMemoryExit = 77;
inline constexpr auto differsFromManifest = "Differs from the manifest";

/// Finds the fonts, which every worker would do again. Leaves the process with one thread. Before the first
/// worker is forked.
void warmUp();

/// Loads the skin and draws its windows, in the forked process. Writes the hash and a line feed, then the
/// result's line, to standard output. Never returns.
[[noreturn]] void run(const QString &root, const CorpusSkin &skin, std::int64_t maxMemoryMiB);

} // namespace CorpusWorker
} // namespace vantor
