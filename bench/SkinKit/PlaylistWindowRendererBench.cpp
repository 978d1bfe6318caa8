#include "SkinKit/Loading/Skin.h"
#include "SkinKit/Rendering/PlaylistWindowRenderer.h"
#include "SkinKit/Sprites/SkinSprites.h"

#include <QGuiApplication>
#include <QPainter>

#include <benchmark/benchmark.h>

namespace {

using namespace vantor;

Skin benchSkin() {
    Skin skin;
    QImage sheet(280, 186, QImage::Format_RGBX8888);
    sheet.fill(Qt::darkCyan);
    for (const char *name : {"PLEDIT", "TEXT"})
        skin.sheets.insert(QLatin1String(name), sheet);
    return skin;
}

/// What a list of 100,000 rows shows from one row on.
std::vector<PlaylistRow> rowsFrom(int first, QSize size) {
    std::vector<PlaylistRow> rows;
    for (int row = first; row < first + PlaylistWindowLayout::visibleRows(size); ++row)
        rows.push_back({QStringLiteral("%1. Ensemble Number %2 - A Title of Quite the Ordinary Length")
                            .arg(row + 1)
                            .arg(row % 977),
                        QStringLiteral("%1:%2").arg(row % 9).arg(row % 50 + 10), row % 7 == 0, row % 5 == 0});
    return rows;
}

/// A frame of scrolling: every row has become another.
void scrollFrame(benchmark::State &state) {
    static int argc = 1;
    static char name[] = "bench";
    static char *argv[] = {name};
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static const QGuiApplication application(argc, argv); // fonts need one
    const auto scale = static_cast<int>(state.range(0));
    const Skin skin = benchSkin();
    PlaylistWindowScene before;
    before.size = QSize(static_cast<int>(state.range(1)), static_cast<int>(state.range(2)));
    QImage window(before.size * scale, QImage::Format_RGB32);
    int first = 0;
    for (auto _ : state) {
        PlaylistWindowScene scene = before;
        first = (first + 3) % 99'000;
        scene.rows = rowsFrom(first, scene.size);
        scene.scroll = first / 100'000.0;
        QRegion clip;
        for (const QRect &rect : PlaylistWindowRenderer::changed(before, scene))
            clip += QRect(rect.topLeft() * scale, rect.size() * scale);
        QPainter painter(&window);
        painter.setClipRegion(clip);
        PlaylistWindowRenderer::draw(painter, skin, scene, scale);
        before = scene;
    }
}
BENCHMARK(scrollFrame)
    ->Args({1, 275, 232})
    ->Args({2, 275, 232})
    ->Args({1, 500, 696})
    ->Args({2, 500, 696})
    ->Args({2, 1000, 1000})
    ->Unit(benchmark::kMicrosecond);

} // namespace
