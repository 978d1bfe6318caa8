#include <QProcess>

#include <benchmark/benchmark.h>

// From starting a process to its end right after the first painted window. Needs a display (xvfb-run will
// do).
static void start(benchmark::State &state, const char *program) {
    for (auto _ : state) {
        if (QProcess::execute(QString::fromLocal8Bit(program), {}) != 0)
            state.SkipWithError("the program did not start");
    }
}

BENCHMARK_CAPTURE(start, bareQtWindow, BARE_WINDOW)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(3);
BENCHMARK_CAPTURE(start, player, PLAYER_WINDOW)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(3);
