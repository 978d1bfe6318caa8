#include "AudioCore/Analysis/AnalyzerTap.h"
#include "AudioCore/Analysis/VisBars.h"
#include "AudioCore/Decoding/AudioFileDecoder.h"
#include "AudioCore/Graph/AudioGraph.h"
#include "tests/Support/AudioFileBuilder.h"

#include <QFile>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

using namespace vantor;

namespace {

// Every iteration is one second of sound at 44.1 kHz, so that 1 % of a core is 10 ms.
constexpr int rate = 44100;
constexpr int blockFrames = 441;

void renderSecond(benchmark::State &state, bool analysed, float volume, bool limited) {
    AnalyzerTap tap(1024, 32768);
    tap.prepare(rate);
    AudioGraph graph(rate, analysed ? &tap : nullptr);
    graph.setVolume(volume);
    graph.setLimiterEnabled(limited);
    PlayerNode &node = *graph.node();
    node.discardBefore(1);
    node.play();
    const std::vector<StereoFrame> second(rate, StereoFrame{0.25F, -0.5F});
    bool fits = node.beginSegment(1, 0) && node.write(second) == second.size();
    std::vector<float> out(2 * blockFrames);
    VisBars bars;
    for ([[maybe_unused]] auto _ : state) {
        state.PauseTiming();
        fits = fits && node.write(second) == second.size();
        state.ResumeTiming();
        double sinceFrame = 0;
        for (int block = 0; block < rate / blockFrames; ++block) {
            graph.render(out.data(), blockFrames);
            benchmark::DoNotOptimize(out.data());
            sinceFrame += static_cast<double>(blockFrames) / rate;
            if (!analysed || sinceFrame < 1.0 / 60)
                continue;
            if (const std::optional<VisFrame> frame = tap.frame(1.0 / 60))
                bars.step(frame->spectrum);
            benchmark::DoNotOptimize(bars);
            sinceFrame -= 1.0 / 60;
        }
    }
    if (!fits || node.underruns() > 0)
        state.SkipWithError("the sound did not flow");
}

void decodeSecond(benchmark::State &state, const char *name, int outputRate) {
    constexpr int seconds = 30;
    const QTemporaryDir folder;
    const QString path = folder.filePath(QLatin1String(name));
    writeAudioFile(path, {.seconds = seconds});
    for ([[maybe_unused]] auto _ : state) {
        AudioFileDecoder decoder(path, outputRate);
        while (!decoder.read().empty()) {
        }
    }
    state.counters["per_second_of_sound"] = benchmark::Counter(
        seconds, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void openAndFirstBlock(benchmark::State &state, const char *name) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QLatin1String(name));
    writeAudioFile(path, {.seconds = 240});
    for ([[maybe_unused]] auto _ : state) {
        AudioFileDecoder decoder(path, rate);
        benchmark::DoNotOptimize(decoder.read().data());
    }
}

void seekAndFirstBlock(benchmark::State &state, const char *name) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QLatin1String(name));
    writeAudioFile(path, {.seconds = 240});
    AudioFileDecoder decoder(path, rate);
    double place = 0;
    for ([[maybe_unused]] auto _ : state) {
        place = place < 120 ? 200 : 40;
        decoder.seek(place);
        benchmark::DoNotOptimize(decoder.read().data());
    }
}

// Ten hours of bare frames without a table, made of the same minute over and over.
void firstFarSeek(benchmark::State &state, const char *name, const std::vector<std::string> &options) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QLatin1String(name));
    std::vector<StereoFrame> minute(60 * rate);
    for (std::size_t i = 0; i < minute.size(); ++i)
        minute[i].left = static_cast<float>(i * 40'503 % 1009) * 0.0002F; // so that sizes vary
    encodeAudioFile(path, minute, rate, options);
    QFile file(path);
    bool isMade = file.open(QIODevice::ReadWrite);
    const QByteArray frames = file.readAll();
    for (int i = 1; i < 600; ++i)
        isMade = isMade && file.write(frames) == frames.size();
    if (!isMade)
        state.SkipWithError("no such file");
    file.close();
    for ([[maybe_unused]] auto _ : state) {
        state.PauseTiming();
        AudioFileDecoder decoder(path, rate);
        benchmark::DoNotOptimize(decoder.read().data());
        state.ResumeTiming();
        decoder.seek(35'000);
        benchmark::DoNotOptimize(decoder.read().data());
    }
    state.counters["bytes"] = static_cast<double>(frames.size() * 600);
}

const std::vector<std::string> variable{"-q:a", "5", "-write_xing", "0", "-id3v2_version", "0"};

} // namespace

BENCHMARK_CAPTURE(renderSecond, plain, false, 1.0F, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(renderSecond, analysed_at_60_Hz, true, 1.0F, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(renderSecond, limiter_idle, false, 1.0F, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(renderSecond, limiter_at_work, false, 4.0F, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(decodeSecond, wav, "a.wav", rate)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(decodeSecond, flac, "a.flac", rate)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(decodeSecond, flac_to_48_kHz, "a.flac", 48000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(decodeSecond, mp3, "a.mp3", rate)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(decodeSecond, m4a, "a.m4a", rate)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(openAndFirstBlock, flac, "a.flac")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(openAndFirstBlock, mp3, "a.mp3")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(seekAndFirstBlock, flac, "a.flac")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(seekAndFirstBlock, mp3, "a.mp3")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(seekAndFirstBlock, m4a, "a.m4a")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(firstFarSeek, mp3, "a.mp3", variable)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(firstFarSeek, adts, "a.aac", {"-b:a", "96k"})->Unit(benchmark::kMillisecond);
