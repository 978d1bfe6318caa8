#include "Vantor/Model/TrackFinder.h"

#include <benchmark/benchmark.h>

namespace {

using namespace vantor;

std::vector<Track> manyTracks() {
    const char *words[] = {"harbour", "morning", "night", "train",    "rain",
                           "kites",   "winter",  "lamp",  "Überfahrt"};
    const auto word = [&](int number) { return QString::fromUtf8(words[number % std::ssize(words)]); };
    std::vector<Track> tracks(100'000);
    for (int i = 0; i < 100'000; ++i) {
        Track &track = tracks[static_cast<std::size_t>(i)];
        track.artist = word(i / 7) + QLatin1Char(' ') + word(i / 91);
        track.title = word(i) + QLatin1Char(' ') + word(i / 3) + QStringLiteral(" %1").arg(i);
        track.source =
            QUrl::fromLocalFile(QStringLiteral("/music/%1/%2.flac").arg(track.artist, track.title));
    }
    return tracks;
}

/// What happens when the dialog opens.
void prepare(benchmark::State &state) {
    const std::vector<Track> tracks = manyTracks();
    for (auto _ : state)
        benchmark::DoNotOptimize(TrackFinder(tracks));
}
BENCHMARK(prepare)->Unit(benchmark::kMillisecond);

/// The dearest key: a first letter, for which every track is looked at.
void firstLetter(benchmark::State &state) {
    TrackFinder finder(manyTracks());
    for (auto _ : state) {
        benchmark::DoNotOptimize(finder.find(QStringLiteral("z")));
        benchmark::DoNotOptimize(finder.find(QStringLiteral("r")));
    }
}
BENCHMARK(firstLetter)->Unit(benchmark::kMillisecond);

} // namespace
