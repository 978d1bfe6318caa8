#include "AudioCore/Playback/Player.h"
#include "AudioCore/Queue/PlaylistSelection.h"
#include "tests/Support/TestOutput.h"

#include <QCoreApplication>

#include <benchmark/benchmark.h>

#include <random>

using namespace vantor;

namespace {

constexpr int longQueue = 100'000;

/// A large library in no particular order: ten tracks to an album, ten albums to an artist.
std::vector<Track> library() {
    std::vector<Track> tracks(longQueue);
    for (int i = 0; i < longQueue; ++i) {
        Track &track = tracks[static_cast<size_t>(i)];
        const QString artist = QStringLiteral("Artist %1").arg(i / 100, 4, 10, QLatin1Char('0'));
        const QString album = QStringLiteral("Album %1").arg(i / 10 % 10);
        track.id = QUuid::createUuid();
        track.title = QStringLiteral("Title %1").arg(i);
        track.artist = artist;
        track.album = album;
        track.duration = 200;
        track.source = QUrl::fromLocalFile(QStringLiteral("/home/someone/Music/%1/%2/%3 Title %4.flac")
                                               .arg(artist, album)
                                               .arg(i % 10 + 1, 2, 10, QLatin1Char('0'))
                                               .arg(i));
    }
    std::shuffle(tracks.begin(), tracks.end(), std::mt19937(1));
    return tracks;
}

const std::vector<Track> &tracks() {
    static const std::vector<Track> made = library();
    return made;
}

IndexSet everySecondRow() {
    IndexSet rows;
    for (int row = 0; row < longQueue; row += 2)
        rows.insert(rows.end(), row);
    return rows;
}

/// What a command of the player takes with a long queue, with everything that the player does about it.
void command(benchmark::State &state, const std::function<void(Player &)> &run, bool shuffled) {
    int count = 0;
    char *name = nullptr;
    const QCoreApplication application(count, &name);
    for (auto _ : state) {
        state.PauseTiming();
        {
            Player player(std::make_unique<FileTrackResolver>(), std::make_unique<SilentOutputDevices>());
            player.restoreQueue(tracks(), longQueue / 2, RepeatMode::all, shuffled);
            state.ResumeTiming();
            run(player);
            state.PauseTiming();
        }
        state.ResumeTiming();
    }
}

void selection(benchmark::State &state, const std::function<void(PlaylistSelection &)> &run) {
    for (auto _ : state) {
        state.PauseTiming();
        PlaylistSelection selected;
        selected.shiftClick(0, tracks());
        selected.shiftClick(longQueue / 2, tracks());
        state.ResumeTiming();
        run(selected);
    }
}

const IndexSet half = everySecondRow();

} // namespace

#define COMMAND(name, ...)                                                                                   \
    BENCHMARK_CAPTURE(                                                                                       \
        command, name, [](Player &player) { __VA_ARGS__; }, false)                                           \
        ->Unit(benchmark::kMillisecond)                                                                      \
        ->Iterations(10);                                                                                    \
    BENCHMARK_CAPTURE(                                                                                       \
        command, name##Shuffled, [](Player &player) { __VA_ARGS__; }, true)                                  \
        ->Unit(benchmark::kMillisecond)                                                                      \
        ->Iterations(10)
#define SELECTION(name, ...)                                                                                 \
    BENCHMARK_CAPTURE(selection, name, [](PlaylistSelection &selected) { __VA_ARGS__; })                     \
        ->Unit(benchmark::kMillisecond)                                                                      \
        ->Iterations(10)

COMMAND(appendOne, player.enqueue({tracks().front()}));
COMMAND(appendAsMany, player.enqueue(tracks()));
COMMAND(restore, player.restoreQueue(tracks(), 7, RepeatMode::all, player.isShuffled()));
COMMAND(shuffle, player.setShuffled(!player.isShuffled()));
COMMAND(sortByName, player.sortQueue(PlaylistSortKey::fileName));
COMMAND(sortByPath, player.sortQueue(PlaylistSortKey::path));
COMMAND(reverse, player.reverseQueue());
COMMAND(randomize, player.randomizeQueue());
COMMAND(moveHalf, player.moveTracks(half, 1));
COMMAND(removeOne, player.removeTrack(longQueue / 3));
COMMAND(removeHalf, player.removeTracks(half));
COMMAND(clear, player.clearQueue());
COMMAND(next, player.next());
COMMAND(playRow, player.play(longQueue / 3));

SELECTION(click, selected.click(5, tracks()));
SELECTION(shiftClick, selected.shiftClick(longQueue - 1, tracks()));
SELECTION(selectAll, selected.selectAll(tracks()));
SELECTION(invert, selected.invert(tracks()));
SELECTION(prune, selected.prune(tracks()));
SELECTION(indices, benchmark::DoNotOptimize(selected.indices(tracks())));
