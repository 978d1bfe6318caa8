#include "Vantor/Model/PlaylistModel.h"
#include "tests/Support/TestFolder.h"
#include "tests/Support/TestOutput.h"

#include <QGuiApplication>
#include <QSettings>

#include <benchmark/benchmark.h>

namespace {

using namespace vantor;

constexpr int longQueue = 100'000;

std::vector<Track> manyTracks(const QString &artist) {
    std::vector<Track> tracks(longQueue);
    for (int i = 0; i < longQueue; ++i) {
        Track &track = tracks[static_cast<std::size_t>(i)];
        track.id = QUuid::createUuid();
        track.artist = artist.arg(i / 100);
        track.title = QStringLiteral("Title number %1").arg(i);
        track.duration = 200;
        track.source = QUrl::fromLocalFile(QStringLiteral("/home/someone/Music/%1.flac").arg(i));
    }
    return tracks;
}

/// The model of a long queue, and everything around it that hears of its changes.
class LongQueue {
  public:
    explicit LongQueue(const QString &artist = QStringLiteral("Some artist %1")) {
        m_player.restoreQueue(manyTracks(artist), std::nullopt, RepeatMode::off, false);
    }

    PlaylistModel &playlist() { return m_playlist; }
    void show() { benchmark::DoNotOptimize(m_playlist.scene()); }

  private:
    TestFolder m_folder;
    QSettings m_settings{m_folder.path("settings.ini"), QSettings::IniFormat};
    Player m_player{std::make_unique<FileTrackResolver>(), std::make_unique<SilentOutputDevices>()};
    PlayerModel m_model{m_player, m_settings};
    PlaylistModel m_playlist{m_model, m_settings};
};

/// One row, or as many as stand together, are dragged on by a row, and the window shows it.
void dragStep(benchmark::State &state) {
    LongQueue queue;
    queue.playlist().select(longQueue / 2, PlaylistModel::Selecting::only);
    queue.playlist().select(longQueue / 2 + static_cast<int>(state.range(0)) - 1,
                            PlaylistModel::Selecting::extending);
    queue.playlist().moveSelected(1);
    queue.show();
    int by = 1;
    for (auto _ : state) {
        queue.playlist().moveSelected(by = -by);
        queue.show();
    }
}
BENCHMARK(dragStep)->Arg(1)->Arg(100)->Unit(benchmark::kMicrosecond);

/// How long a key holds up everything else, with letters that no track has: all of them are looked at.
void typeAMiss(benchmark::State &state, const QString &artist) {
    LongQueue queue(artist);
    for (auto _ : state) {
        queue.playlist().type(QStringLiteral("qz"));
        state.PauseTiming();
        queue.playlist().endTyping();
        state.ResumeTiming();
    }
}
BENCHMARK_CAPTURE(typeAMiss, plain, QStringLiteral("Some artist %1"))->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(typeAMiss, accented, QStringLiteral("Ünë Ärtist %1"))->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
