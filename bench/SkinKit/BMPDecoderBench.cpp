#include "SkinKit/Decoding/BMPDecoder.h"
#include "tests/Support/BitmapBuilder.h"

#include <benchmark/benchmark.h>

#include <random>

using namespace vantor;
using namespace vantor::test;

// The same bytes through our decoder, through Qt's reader, and through Qt's reader into the pixel format that
// our decoder yields: for 8 bits the reader alone copies the indices and leaves the palette to later.
namespace {

constexpr int runLength = -8; ///< stands for 8 bits run-length encoded

QByteArray makeSheet(int width, int height, int depth) {
    std::mt19937 random(1);
    BitmapBuilder bitmap{.width = width, .height = height, .depth = std::abs(depth)};
    if (bitmap.depth == 8) {
        for (int index = 0; index < 256; ++index)
            bitmap.palette.push_back({static_cast<std::uint8_t>(index),
                                      static_cast<std::uint8_t>(255 - index),
                                      static_cast<std::uint8_t>(index * 7)});
    }
    if (depth == runLength) {
        bitmap.compression = 1;
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; x += 11) {
                bitmap.pixels += static_cast<char>(std::min(11, width - x));
                bitmap.pixels += static_cast<char>(random());
            }
            bitmap.pixels += QByteArray(2, '\0');
        }
        bitmap.pixels += QByteArray("\0\1", 2);
    } else {
        bitmap.pixels.resize((qsizetype{width} * depth + 31) / 32 * 4 * height);
        // A gradient with some noise packs to about half its size, as painted sheets do.
        for (qsizetype index = 0; index < bitmap.pixels.size(); ++index)
            bitmap.pixels[index] =
                static_cast<char>((index / 9 & 0xF0) + static_cast<qsizetype>(random() % 8));
    }
    return bitmap.bmp();
}

template <typename Decode>
void run(benchmark::State &state, Decode decode) {
    const QByteArray sheet = makeSheet(static_cast<int>(state.range(1)), static_cast<int>(state.range(2)),
                                       static_cast<int>(state.range(0)));
    for (auto unused : state) {
        const QImage image = decode(sheet);
        if (image.isNull())
            state.SkipWithError("not decoded");
        benchmark::DoNotOptimize(image.constBits());
    }
    state.SetBytesProcessed(state.iterations() * sheet.size());
}

void ours(benchmark::State &state) {
    run(state, [](const QByteArray &sheet) { return BMPDecoder::decode(sheet); });
}

void qtReader(benchmark::State &state) {
    run(state, [](const QByteArray &sheet) { return QImage::fromData(sheet, "BMP"); });
}

void qtReaderConverted(benchmark::State &state) {
    run(state, [](const QByteArray &sheet) {
        return QImage::fromData(sheet, "BMP").convertToFormat(QImage::Format_RGBX8888);
    });
}

// What unpacking the archive costs before anything is decoded.
void inflate(benchmark::State &state) {
    const QByteArray packed =
        qCompress(makeSheet(static_cast<int>(state.range(1)), static_cast<int>(state.range(2)),
                            static_cast<int>(state.range(0))));
    for (auto unused : state)
        benchmark::DoNotOptimize(qUncompress(packed).constData());
}

void sheets(benchmark::internal::Benchmark *bench) {
    bench->ArgNames({"depth", "w", "h"});
    for (const int depth : {24, 8, runLength, 32}) {
        bench->Args({depth, 275, 116});
        bench->Args({depth, 1024, 1024});
    }
}

} // namespace

BENCHMARK(ours)->Apply(sheets);
BENCHMARK(inflate)->Apply(sheets);
BENCHMARK(qtReader)->Apply(sheets);
BENCHMARK(qtReaderConverted)->Apply(sheets);
