#include "SkinKit/Loading/SkinParser.h"
#include "SkinKit/Sprites/SkinSprites.h"
#include "tests/Support/BitmapBuilder.h"
#include "tests/Support/ZipBuilder.h"

#include <benchmark/benchmark.h>
#include <zip.h>

#include <random>

using namespace vantor;
using namespace vantor::test;

// Loading a skin from memory against the time that libzip alone takes to inflate the same entries. The skin
// is as large as common ones: 16 sheets, 24 cursors, three texts; gradients, dither and noise let its sheets
// deflate to about a third.
namespace {

QSize sizeOf(const std::vector<Sprite> &sprites) {
    QRect bounds;
    for (const Sprite &sprite : sprites)
        bounds |= QRect(QPoint(), sprite.rect().bottomRight());
    return bounds.size();
}

QByteArray sheet(QSize size, int depth, std::mt19937 &random) {
    BitmapBuilder bitmap{.width = size.width(), .height = size.height(), .depth = depth};
    for (int index = 0; depth == 8 && index < 256; ++index) {
        const auto level = static_cast<std::uint8_t>(index);
        bitmap.palette.push_back({level, level, static_cast<std::uint8_t>(255 - index)});
    }
    const int bytes = depth / 8;
    const qsizetype stride = (qsizetype{size.width()} * depth + 31) / 32 * 4;
    bitmap.pixels = QByteArray(stride * size.height(), '\0');
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            const int dither = (x + y) % 2 * 3;
            for (int channel = 0; channel < bytes; ++channel) {
                const int noise = random() % 4 == 0 ? static_cast<int>(random() % 8) : 0;
                const int gradient = 40 * channel + x / 9 + y / 3;
                bitmap.pixels[stride * y + x * bytes + channel] =
                    static_cast<char>(gradient + dither + noise);
            }
        }
    }
    return bitmap.bmp();
}

constexpr int mixed = 0; ///< every other sheet has 8 bits, the rest 24

QByteArray makeSkin(int depth) {
    std::mt19937 random(7);
    std::vector<ZipEntry> entries;
    const auto &sheets = SkinSprites::sheets();
    for (auto it = sheets.cbegin(); it != sheets.cend(); ++it) {
        const int own = depth != mixed ? depth : entries.size() % 2 == 0 ? 8 : 24;
        entries.push_back({it.key().toLatin1() + ".BMP", sheet(sizeOf(*it), own, random)});
    }
    for (const QString &name : SkinCursors::names()) {
        const auto red = static_cast<std::uint8_t>(random());
        entries.push_back({name.toLatin1() + ".CUR", solidCursor({red, 20, 30}, {3, 3})});
    }
    entries.push_back({"VISCOLOR.TXT", QByteArray("24,33,41, // a comment on the colour\r\n").repeated(24)});
    entries.push_back({"PLEDIT.TXT", "[Text]\r\nNormal=#00FF00\r\nCurrent=#FFFFFF\r\nFont=Arial\r\n"});
    entries.push_back({"README.TXT", QByteArray("Made with care, free to share. ").repeated(60)});
    return zipFile(entries);
}

struct Inflated {
    std::int64_t files = 0;
    std::int64_t bytes = 0;
};

Inflated inflateAll(const QByteArray &skin) {
    zip_error_t error;
    zip_source_t *source =
        zip_source_buffer_create(skin.constData(), static_cast<zip_uint64_t>(skin.size()), 0, &error);
    zip_t *archive = zip_open_from_source(source, ZIP_RDONLY, &error);
    char chunk[16'384];
    Inflated result;
    result.files = zip_get_num_entries(archive, 0);
    for (zip_int64_t index = 0; index < result.files; ++index) {
        zip_file_t *file = zip_fopen_index(archive, static_cast<zip_uint64_t>(index), 0);
        for (zip_int64_t count = 0; (count = zip_fread(file, chunk, sizeof chunk)) > 0;)
            result.bytes += count;
        zip_fclose(file);
    }
    zip_discard(archive);
    return result;
}

void inflate(benchmark::State &state) {
    const QByteArray skin = makeSkin(static_cast<int>(state.range(0)));
    Inflated result;
    for (auto unused : state)
        benchmark::DoNotOptimize(result = inflateAll(skin));
    state.counters["zipped"] = static_cast<double>(skin.size());
    state.counters["inflated"] = static_cast<double>(result.bytes);
}

void load(benchmark::State &state) {
    const QByteArray skin = makeSkin(static_cast<int>(state.range(0)));
    for (auto unused : state) {
        const Skin loaded = SkinParser::parse(SkinArchive::fromZip(skin));
        if (!loaded.generatedSheets.isEmpty() || loaded.cursors.cursors.size() != SkinCursors::names().size())
            state.SkipWithError("not everything was read");
    }
}

} // namespace

BENCHMARK(inflate)->ArgName("depth")->Arg(mixed)->Arg(8)->Arg(24)->Unit(benchmark::kMicrosecond);
BENCHMARK(load)->ArgName("depth")->Arg(mixed)->Arg(8)->Arg(24)->Unit(benchmark::kMicrosecond);
