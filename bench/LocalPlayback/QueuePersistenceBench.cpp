#include "AudioCore/Playback/Player.h"
#include "LocalPlayback/Queue/QueueAutosaver.h"
#include "tests/LocalPlayback/Queue/MadeQueue.h"
#include "tests/Support/TestOutput.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

using namespace vantor;

namespace {

constexpr int longQueue = 100'000;

QueueStore storeIn(const QTemporaryDir &folder) {
    return QueueStore(QUrl::fromLocalFile(folder.filePath(QStringLiteral("queue.json"))));
}

void load(benchmark::State &state) {
    const QTemporaryDir folder;
    const QueueStore store = storeIn(folder);
    store.save(test::madeQueue(longQueue));
    for (auto _ : state)
        benchmark::DoNotOptimize(store.load());
}

void save(benchmark::State &state) {
    const QTemporaryDir folder;
    const QueueStore store = storeIn(folder);
    const QueueSnapshot snapshot = test::madeQueue(longQueue);
    for (auto _ : state)
        store.save(snapshot);
}

/// What an automatic save takes of the main thread: everything between two turns of the event loop.
void autosave(benchmark::State &state) {
    int count = 0;
    char *name = nullptr;
    const QCoreApplication application(count, &name);
    const QTemporaryDir folder;
    Player player(std::make_unique<FileTrackResolver>(), std::make_unique<SilentOutputDevices>());
    player.restoreQueue(test::madeQueue(longQueue).items, 0, RepeatMode::off, state.range(0) != 0);
    QueueAutosaver saver(player, storeIn(folder), std::chrono::milliseconds(0));
    saver.start();
    for (auto _ : state) {
        state.PauseTiming();
        player.setRepeatMode(toggled(player.repeatMode()));
        state.ResumeTiming();
        QCoreApplication::processEvents();
        state.PauseTiming();
        saver.flush();
        state.ResumeTiming();
    }
}

/// The first edit after a save, while that is still being written.
void editDuringSave(benchmark::State &state) {
    int count = 0;
    char *name = nullptr;
    const QCoreApplication application(count, &name);
    const QTemporaryDir folder;
    Player player(std::make_unique<FileTrackResolver>(), std::make_unique<SilentOutputDevices>());
    player.restoreQueue(test::madeQueue(longQueue).items, 0, RepeatMode::off, true);
    QueueAutosaver saver(player, storeIn(folder), std::chrono::milliseconds(0));
    saver.start();
    for (auto _ : state) {
        state.PauseTiming();
        player.setRepeatMode(toggled(player.repeatMode()));
        QCoreApplication::processEvents();
        state.ResumeTiming();
        player.reverseQueue();
        state.PauseTiming();
        saver.flush();
        state.ResumeTiming();
    }
}

} // namespace

BENCHMARK(load)->Unit(benchmark::kMillisecond);
BENCHMARK(save)->Unit(benchmark::kMillisecond);
BENCHMARK(autosave)->Arg(0)->Arg(1)->ArgName("shuffled")->Unit(benchmark::kMillisecond)->Iterations(20);
BENCHMARK(editDuringSave)->Unit(benchmark::kMillisecond)->Iterations(20);
